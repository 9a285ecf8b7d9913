#include "app/quicksearch/QuickSearchState.h"

#include <algorithm>
#include <utility>

namespace tovi {

QuickSearchState::QuickSearchState(Executor& executor, SearchModel& search, FileOpener& opener)
    : executor_(executor), search_(search), opener_(opener) {}

void QuickSearchState::setQuery(const QString& text) {
    if (text == query_) return;
    query_ = text;
    isChosen_ = false;
    isSearching_ = true;
    isStarted_ = false;
    due_ = nullptr;
    runAfter(executor_, this, debounce, [this, generation = ++generation_] {
        if (generation == generation_ && !isStarted_) search();
    });
    Q_EMIT changed();
}

int QuickSearchState::selectedRow() const {
    return selectedID_ ? matches_.rowOf(toQt(*selectedID_)) : -1;
}

const FileRecord* QuickSearchState::selectedFile() const {
    const int row = selectedRow();
    return row < 0 ? nullptr : &matches_.rows()[static_cast<std::size_t>(row)];
}

void QuickSearchState::present() {
    ++generation_;
    search();
}

void QuickSearchState::invalidate() {
    ++generation_;
    isSearching_ = false;
    isStarted_ = false;
    isChosen_ = false;
    due_ = nullptr;
    selectedID_.reset();
    errorMessage_.clear();
    matches_.replace({});
    Q_EMIT changed();
}

void QuickSearchState::search() {
    isSearching_ = true;
    isStarted_ = true;
    search_.quickSearch(query_, maximumMatches,
                        [state = QPointer(this), generation = generation_](const auto& outcome) {
                            if (state && generation == state->generation_) state->show(outcome);
                        });
    Q_EMIT changed();
}

void QuickSearchState::show(const Outcome<std::vector<FileRecord>>& outcome) {
    isSearching_ = false;
    const Action due = std::exchange(due_, nullptr);
    errorMessage_ = toQt(outcome.error);
    matches_.replace(outcome.value.value_or(std::vector<FileRecord>{}));
    const bool isGone = isChosen_ && !selectedFile();
    if (!isChosen_ || isGone) {
        selectedID_.reset();
        if (!matches_.rows().empty()) selectedID_ = matches_.rows().front().path;
    }
    Q_EMIT changed();
    if (due && !isGone) perform(due);
}

void QuickSearchState::moveSelection(int rows) {
    if (matches_.count() > 0)
        select(std::clamp(std::max(selectedRow(), 0) + rows, 0, matches_.count() - 1));
}

void QuickSearchState::select(int row) {
    if (row < 0 || row >= matches_.count()) return;
    selectedID_ = matches_.rows()[static_cast<std::size_t>(row)].path;
    isChosen_ = true;
    due_ = nullptr;
    Q_EMIT changed();
}

void QuickSearchState::act(Action action) {
    if (!isSearching_) return perform(action);
    due_ = action;
    if (!isStarted_) search();
}

void QuickSearchState::perform(Action action) {
    const FileRecord* file = selectedFile();
    if (!file) return;
    if ((opener_.*action)(file->path)) {
        Q_EMIT finished();
    } else {
        errorMessage_ =
            tr("“%1” could not be opened. It may have been moved.").arg(toQt(file->name));
        Q_EMIT changed();
    }
}

} // namespace tovi
