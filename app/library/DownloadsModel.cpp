#include "app/library/DownloadsModel.h"

#include "app/lists/QtConversions.h"
#include "base/Text.h"
#include "core/library/LibraryOrder.h"

#include <algorithm>

namespace tovi {

DownloadsModel::DownloadsModel(Executor& executor)
    : executor_(executor),
      groups_(
          [](const Group& group) { return group.id; },
          {{"id", [](const Group& group) { return toQt(group.id); }},
           {"name", [](const Group& group) { return toQt(group.name); }},
           {"symbol", [](const Group& group) { return toQt(group.symbol); }},
           {"count", [](const Group& group) { return static_cast<int>(group.count); }},
           {"bytes", [](const Group& group) { return QVariant::fromValue<qint64>(group.bytes); }},
           {"newest", [](const Group& group) { return toMilliseconds(group.newest); }}}) {}

void DownloadsModel::setIndex(std::shared_ptr<IndexStore> index) {
    loadGeneration_.cancel();
    filesGeneration_.cancel();
    index_ = std::move(index);
    isLoading_ = false;
    error_.clear();
    keep(nullptr);
    groups_.replace({});
    latest_.replace({});
    files_.replace({});
    hasMoreFiles_ = false;
    Q_EMIT changed();
    Q_EMIT filesChanged();
}

DownloadsModel::Loaded DownloadsModel::load(IndexStore& index, const std::stop_token& stop) {
    std::vector<FileRecord> files = index.downloads(stop);
    Loaded loaded;
    loaded.latest = latestDownloads(files, latestCount);
    auto groups = std::make_shared<const std::vector<DownloadGroup>>(
        DownloadGroups::make(std::move(files), stop));
    for (const DownloadGroup& group : *groups) {
        loaded.groups.push_back({group.id, group.name, group.symbol, group.files.size(),
                                 summarize(group.files).total.bytes,
                                 effectiveDate(group.files.front())});
    }
    loaded.downloads = std::move(groups);
    return loaded;
}

/// Freeing very many records takes longer than a frame may, so the old ones go elsewhere.
void DownloadsModel::keep(Downloads downloads) {
    std::swap(downloads_, downloads);
    if (downloads) executor_.run([old = std::move(downloads)]() mutable { old.reset(); });
}

void DownloadsModel::refresh() {
    if (!index_) return;
    isLoading_ = true;
    Q_EMIT changed();
    runLatest(
        executor_, this, loadGeneration_,
        [index = index_](const std::stop_token& stop) { return load(*index, stop); },
        [this](Outcome<Loaded> outcome) {
            isLoading_ = false;
            error_ = toQt(outcome.error);
            if (outcome) {
                keep(std::move(outcome.value->downloads));
                groups_.replace(std::move(outcome.value->groups));
                latest_.replace(std::move(outcome.value->latest));
                showFiles(shownFiles_);
            }
            Q_EMIT changed();
        });
}

void DownloadsModel::selectGroup(const QString& id) {
    if (selectedGroup_ == id) return;
    selectedGroup_ = id;
    Q_EMIT filterChanged();
    showFiles(pageSize);
}

void DownloadsModel::setNameFilter(const QString& text) {
    if (nameFilter_ == text) return;
    nameFilter_ = text;
    Q_EMIT filterChanged();
    showFiles(pageSize);
}

void DownloadsModel::loadMoreFiles() {
    if (hasMoreFiles_) showFiles(shownFiles_ + pageSize);
}

void DownloadsModel::showFiles(std::size_t count) {
    shownFiles_ = count;
    if (!downloads_) return;
    struct Page {
        std::vector<FileRecord> files;
        bool hasMore = false;
    };
    runLatest(
        executor_, this, filesGeneration_,
        [downloads = downloads_, id = fromQt(selectedGroup_), count,
         filter = lowercased(fromQt(nameFilter_))](const std::stop_token& stop) {
            Page page;
            const auto group =
                std::find_if(downloads->begin(), downloads->end(),
                             [&](const DownloadGroup& candidate) { return candidate.id == id; });
            if (group == downloads->end()) return page;
            for (const FileRecord& file : group->files) {
                throwIfCancelled(stop);
                if (lowercased(file.name).find(filter) == std::string::npos) continue;
                page.hasMore = page.files.size() == count;
                if (page.hasMore) break;
                page.files.push_back(file);
            }
            return page;
        },
        [this](Outcome<Page> outcome) {
            if (!outcome) return;
            files_.replace(std::move(outcome.value->files));
            hasMoreFiles_ = outcome.value->hasMore;
            Q_EMIT filesChanged();
        });
}

} // namespace tovi
