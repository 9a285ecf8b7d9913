#include "app/model/SearchModel.h"

#include "app/lists/QtConversions.h"
#include "core/search/QueryParser.h"

namespace tovi {

SearchModel::SearchModel(ModelContext& context) : context_(context), pages_(context) {
    connect(&pages_, &RecordPages::changed, this, &SearchModel::resultsChanged);
    connect(&pages_, &RecordPages::arrived, this, [this] {
        if (!std::exchange(isFirstPageDue_, false)) return;
        shownText_ = requestedText_.value_or(QString());
        searchSeconds_ = context_.executor.uptime() - startedUptime_;
    });
    connect(&pages_, &RecordPages::failed, this,
            [this](const QString& error) { context_.notices.setError(fromQt(error)); });
}

void SearchModel::setQuery(const QString& text) {
    if (text == query_) return;
    query_ = text;
    Q_EMIT queryChanged();
}

QString SearchModel::activeSearchText() const {
    return pages_.query() ? shownText_ : QString();
}

QString SearchModel::searchedWords() const {
    return pages_.query() ? toQt(pages_.query()->text) : QString();
}

QStringList SearchModel::chips() const {
    QStringList chips;
    if (!pages_.query()) return chips;
    for (const std::string& chip : pages_.query()->chips)
        chips.append(toQt(chip));
    return chips;
}

void SearchModel::search(const QString& text) {
    setQuery(text);
    requestedText_ = text;
    isSearchDue_ = context_.isInMaintenance();
    if (isSearchDue_ || !context_.index) return;
    startedUptime_ = context_.executor.uptime();
    isFirstPageDue_ = true;
    pages_.show([phrase = fromQt(text), now = context_.executor.now()] {
        return QueryParser().parse(phrase, now);
    });
}

void SearchModel::removeChip(int at) {
    if (!pages_.query()) return;
    QStringList words;
    for (const std::string& each : pages_.query()->chipWords)
        words.append(toQt(each));
    if (at < 0 || at >= words.size()) return;
    words.removeAt(at);
    search(words.join(u' '));
}

void SearchModel::loadMoreSearchResults() {
    if (!context_.isInMaintenance()) pages_.loadMore();
}

void SearchModel::refresh() {
    if (context_.isInMaintenance() || !requestedText_) return;
    if (isSearchDue_) return search(QString(*requestedText_));
    pages_.reload();
}

void SearchModel::clear() {
    requestedText_.reset();
    isSearchDue_ = false;
    pages_.clear();
}

void SearchModel::quickSearch(const QString& text, int limit, QuickResults answer) {
    if (!context_.index || context_.isInMaintenance()) {
        quickGeneration_.cancel();
        return answer({std::nullopt, "The index is not available at the moment.", false});
    }
    runLatest(
        context_.executor, this, quickGeneration_,
        [phrase = fromQt(text), limit, now = context_.executor.now(),
         index = context_.index](const std::stop_token& stop) {
            return index->reader.search(QueryParser().parse(phrase, now), limit, 0,
                                        IndexStore::Content::leftOut, stop);
        },
        std::move(answer));
}

} // namespace tovi
