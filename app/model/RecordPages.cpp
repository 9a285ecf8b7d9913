#include "app/model/RecordPages.h"

#include "app/lists/QtConversions.h"

namespace tovi {

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
        [makeQuery = makeQuery_, limit, index = context_.index](const std::stop_token& stop) {
            Page page{makeQuery(), {}};
            page.files =
                index->reader.search(page.query, limit, 0, IndexStore::Content::leftOut, stop);
            return page;
        },
        [this, limit](Outcome<Page> outcome) {
            if (!outcome) {
                Q_EMIT failed(toQt(outcome.error));
                return;
            }
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
