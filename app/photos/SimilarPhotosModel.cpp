#include "app/photos/SimilarPhotosModel.h"

#include "app/lists/QtConversions.h"
#include "app/lists/RecordList.h"

#include <QLocale>

namespace tovi {
namespace {

QString stoppedText() {
    return QStringLiteral("Comparison stopped. Your files are unchanged.");
}

QString grouped(int number) {
    return QLocale().toString(number);
}

constexpr std::size_t mostFilesShown = 12; // of a group, before all are asked for

QVariantMap valuesOf(const SimilarPhotoGroup& group, std::size_t at) {
    QVariantMap values = toVariantMap(group.files[at]);
    values.insert(QStringLiteral("width"), group.traits[at].width);
    values.insert(QStringLiteral("height"), group.traits[at].height);
    return values;
}

/// The one that deserves to stay, if there is one, then others; so many at most.
QVariantList valuesOf(const SimilarPhotoGroup& group, const std::optional<std::size_t>& keeper,
                      std::size_t most) {
    QVariantList files;
    if (keeper) files.append(valuesOf(group, *keeper));
    for (std::size_t at = 0; at < group.files.size(); ++at) {
        if (static_cast<std::size_t>(files.size()) == most) break;
        if (at != keeper) files.append(valuesOf(group, at));
    }
    return files;
}

} // namespace

SimilarPhotosModel::SimilarPhotosModel(Executor& executor, Scanner scanner)
    : executor_(executor),
      scanner_(std::move(scanner)),
      groups_(
          [](const SimilarPhotoGroup& group) { return group.id(); },
          {{"id", [](const auto& group) { return toQt(group.id()); }},
           {"files",
            [](const auto& group) { return valuesOf(group, group.keeper(), mostFilesShown); }},
           {"count", [](const auto& group) { return static_cast<int>(group.files.size()); }},
           {"potentialBytes",
            [](const auto& group) { return QVariant::fromValue<qint64>(group.potentialBytes()); }},
           {"hasKeeper", [](const auto& group) { return group.keeper().has_value(); }},
           {"warning", [](const auto& group) {
                return group.looksLikeText()
                           ? QStringLiteral(
                                 "These look like pages of text, which "
                                 "may say different things: compare them before you decide.")
                           : QString();
            }}}) {}

QString SimilarPhotosModel::notice() const {
    if (!report_ || isScanning_) return {};
    if (report_->limited) {
        return QStringLiteral(
            "This comparison reached its limit. Choose a smaller folder to check more photos.");
    }
    if (report_->groups.empty()) return QStringLiteral("No look-alikes found in this check");
    return {};
}

QString SimilarPhotosModel::caution() const {
    return QStringLiteral("Similar photos can contain different details. File sizes shown here "
                          "aren't a promise of freed disk space.");
}

QStringList SimilarPhotosModel::selectedIDList() const {
    QStringList ids;
    for (const std::string& id : selectedIDs_)
        ids.append(toQt(id));
    return ids;
}

std::vector<FileRecord> SimilarPhotosModel::selected() const {
    std::vector<FileRecord> files;
    if (!report_) return files;
    for (const SimilarPhotoGroup& group : report_->groups) {
        std::copy_if(group.files.begin(), group.files.end(), std::back_inserter(files),
                     [&](const FileRecord& file) { return selectedIDs_.contains(file.path); });
    }
    return files;
}

void SimilarPhotosModel::start(std::vector<FileRecord> files, std::vector<std::string> roots,
                               std::set<std::string> marked) {
    generation_.cancel();
    isScanning_ = true;
    selectedIDs_.clear();
    Q_EMIT selectionChanged();
    setStatus(QStringLiteral("Getting your photos ready…"));
    const std::uint64_t job = generation_.stamp() + 1; // what `runLatest` makes of it
    const LatestValue<SimilarPhotoProgress> progress(
        executor_, this,
        [this, job](const SimilarPhotoProgress& step) { updateProgress(job, step); });
    runLatest(
        executor_, this, generation_,
        [scanner = scanner_, files = std::move(files), roots = std::move(roots),
         progress](const std::stop_token& stop) {
            return scanner(
                files, roots, SimilarPhotoOptions{},
                [&](const SimilarPhotoProgress& step) { progress.set(step); }, stop);
        },
        [this, marked = std::move(marked)](Outcome<SimilarPhotoReport> outcome) {
            finish(std::move(outcome), marked);
        });
}

void SimilarPhotosModel::updateProgress(std::uint64_t job, const SimilarPhotoProgress& progress) {
    if (job != generation_.stamp() || !isScanning_) return;
    if (progress.phase != "Reading photos")
        return setStatus(QStringLiteral("Finding photos that look alike…"));
    setStatus(QStringLiteral("Looking at photos · %1 of %2")
                  .arg(grouped(progress.completed), grouped(progress.total)));
}

void SimilarPhotosModel::finish(Outcome<SimilarPhotoReport> outcome,
                                const std::set<std::string>& marked) {
    isScanning_ = false;
    if (outcome.isCancelled) return setStatus(stoppedText());
    if (!outcome) {
        return setStatus(
            QStringLiteral("Couldn't compare these photos. Try again or choose a smaller folder."));
    }
    report_ = *std::move(outcome.value);
    groups_.replace(report_->groups);
    for (const SimilarPhotoGroup& group : report_->groups) {
        for (const FileRecord& file : group.files)
            if (marked.contains(file.path)) selectedIDs_.insert(file.path);
    }
    Q_EMIT selectionChanged();
    setStatus(QStringLiteral("Compared %1 photos.").arg(grouped(report_->analyzed)));
}

void SimilarPhotosModel::cancel() {
    generation_.cancel();
    if (!std::exchange(isScanning_, false)) return;
    setStatus(stoppedText());
}

void SimilarPhotosModel::setStatus(const QString& status) {
    status_ = status;
    Q_EMIT changed();
}

bool SimilarPhotosModel::isSelected(const QString& id) const {
    return selectedIDs_.contains(fromQt(id));
}

const SimilarPhotoGroup* SimilarPhotosModel::groupOf(const QString& id) const {
    const int row = groups_.rowOf(id);
    return row < 0 ? nullptr : &groups_.rows()[static_cast<std::size_t>(row)];
}

QVariantList SimilarPhotosModel::filesOf(const QString& id) const {
    const SimilarPhotoGroup* group = groupOf(id);
    return group ? valuesOf(*group, group->keeper(), group->files.size()) : QVariantList();
}

bool SimilarPhotosModel::isAllSelected(const QString& id) const {
    const SimilarPhotoGroup* group = groupOf(id);
    return group &&
           std::all_of(group->files.begin(), group->files.end(),
                       [&](const FileRecord& file) { return selectedIDs_.contains(file.path); });
}

void SimilarPhotosModel::selectAllButKeeper(const QString& id) {
    const SimilarPhotoGroup* group = groupOf(id);
    const auto keeper = group ? group->keeper() : std::nullopt;
    if (!keeper) return;
    for (const FileRecord& file : group->files)
        selectedIDs_.insert(file.path);
    selectedIDs_.erase(group->files[*keeper].path);
    Q_EMIT selectionChanged();
}

void SimilarPhotosModel::toggle(const QString& id) {
    const std::string path = fromQt(id);
    if (selectedIDs_.erase(path) == 0) selectedIDs_.insert(path);
    Q_EMIT selectionChanged();
}

} // namespace tovi
