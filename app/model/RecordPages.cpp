#include "app/model/RecordPages.h"

#include "app/lists/QtConversions.h"

#include <array>

namespace tovi {
namespace {

constexpr std::array columns{
    std::pair{FileColumn::modified, "modified"}, std::pair{FileColumn::name, "name"},
    std::pair{FileColumn::folder, "folder"}, std::pair{FileColumn::kind, "kind"},
    std::pair{FileColumn::size, "size"}};

} // namespace

QString RecordPages::sortColumn() const {
    for (const auto& [column, name] : columns) {
        if (column == order_.column) return QString::fromLatin1(name);
    }
    return {};
}

void RecordPages::sortBy(const QString& column) {
    for (const auto& [known, name] : columns) {
        if (column != QLatin1String(name)) continue;
        const bool isGreatestFirst = known == FileColumn::modified || known == FileColumn::size;
        order_ = {known, known == order_.column ? !order_.isDescending : isGreatestFirst};
    }
    Q_EMIT changed();
    if (makeQuery_) load(pageSize);
}

void RecordPages::show(MakeQuery query) {
    makeQuery_ = std::move(query);
    query_.reset();
    nextOffset_ = 0;
    hasMore_ = false;
    isLoadingMore_ = false;
    Q_EMIT changed();
    load(pageSize);
}

void RecordPages::reload() {
    if (makeQuery_) load(std::max(nextOffset_, pageSize));
}

void RecordPages::load(std::int64_t limit) {
    if (!context_.index) return;
    isLoadingMore_ = false;
    runLatest(
        context_.executor, this, generation_,
        [makeQuery = makeQuery_, order = order_, limit,
         index = context_.index](const std::stop_token& stop) {
            Page page{makeQuery(), {}};
            page.query.order = order;
            page.files =
                index->reader.search(page.query, limit, 0, IndexStore::Content::leftOut, stop);
            return page;
        },
        [this, limit](Outcome<Page> outcome) {
            if (!outcome) {
                Q_EMIT failed(toQt(outcome.error));
                return;
            }
            // Files in another order are other rows; telling the difference would be the longer
            // way.
            if (query_ && query_->order != outcome.value->query.order) list_.replace({});
            query_ = std::move(outcome.value->query);
            nextOffset_ = static_cast<std::int64_t>(outcome.value->files.size());
            hasMore_ = nextOffset_ == limit;
            list_.replace(std::move(outcome.value->files));
            ++revision_;
            Q_EMIT arrived();
            Q_EMIT changed();
        });
}

void RecordPages::loadMore() {
    if (!context_.index || !query_ || !hasMore_ || isLoadingMore_) return;
    isLoadingMore_ = true;
    Q_EMIT changed();
    runLatest(
        context_.executor, this, generation_,
        [query = *query_, offset = nextOffset_,
         index = context_.index](const std::stop_token& stop) {
            return index->reader.search(query, pageSize, offset, IndexStore::Content::leftOut,
                                        stop);
        },
        [this](Outcome<std::vector<FileRecord>> outcome) {
            isLoadingMore_ = false;
            if (outcome) {
                const auto found = static_cast<std::int64_t>(outcome.value->size());
                nextOffset_ += found;
                hasMore_ = found == pageSize;
                list_.append(*std::move(outcome.value));
                ++revision_;
            } else {
                Q_EMIT failed(toQt(outcome.error));
            }
            Q_EMIT changed();
        });
}

void RecordPages::clear() {
    generation_.cancel();
    makeQuery_ = nullptr;
    query_.reset();
    nextOffset_ = 0;
    hasMore_ = false;
    isLoadingMore_ = false;
    list_.replace({});
    ++revision_;
    Q_EMIT changed();
}

} // namespace tovi
