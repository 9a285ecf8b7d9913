#pragma once

#include "app/lists/QtConversions.h"
#include "app/lists/RecordList.h"
#include "app/model/Ports.h"
#include "app/model/SearchModel.h"

namespace tovi {

/// What the quick search panel shows. Lives on the main thread, and not longer than the model.
///
/// The rows of the last text stay until those of the new one are there, so a choice made meanwhile
/// waits: only a file that was found for the text as it stands is ever opened.
class QuickSearchState : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY changed)
    Q_PROPERTY(tovi::RowListModel* matches READ matches CONSTANT)
    Q_PROPERTY(QString selectedID READ selectedID NOTIFY changed)
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY changed)
    Q_PROPERTY(bool isSearching READ isSearching NOTIFY changed)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY changed)

  public:
    static constexpr int maximumMatches = 15;
    static constexpr double debounce = 0.1; // seconds

    QuickSearchState(Executor& executor, SearchModel& search, FileOpener& opener);

    QString query() const { return query_; }
    /// Searches once the text has stood still for `debounce`; an empty text finds recent files.
    void setQuery(const QString& text);

    RowListModel* matches() { return &matches_; }
    /// The path of the highlighted match; empty without one.
    QString selectedID() const { return toQt(selectedID_.value_or("")); }
    int selectedRow() const;
    const FileRecord* selectedFile() const;
    /// From the first change of the text to its results.
    bool isSearching() const { return isSearching_; }
    /// Empty while there is no error to show.
    QString errorMessage() const { return errorMessage_; }

    /// Searches the text at once: the panel has been shown.
    void present();
    /// Drops running work and the matches; the text stays.
    void invalidate();

    /// Moves the highlight by so many rows, stopping at the ends.
    Q_INVOKABLE void moveSelection(int rows);
    /// Highlights a row that is there.
    Q_INVOKABLE void select(int row);
    Q_INVOKABLE void openSelected() { act(&FileOpener::open); }
    Q_INVOKABLE void revealSelected() { act(&FileOpener::reveal); }

  Q_SIGNALS:
    void changed();
    /// A file has been handed to its program: the panel is done.
    void finished();

  private:
    using Action = bool (FileOpener::*)(const std::string& path);

    void search();
    void show(const Outcome<std::vector<FileRecord>>& outcome);
    void act(Action action);
    void perform(Action action);

    Executor& executor_;
    SearchModel& search_;
    FileOpener& opener_;
    QString query_;
    RecordList matches_;
    std::optional<std::string> selectedID_;
    bool isChosen_ = false; // the highlight was moved since the text changed
    bool isSearching_ = false;
    bool isStarted_ = false; // the search of the present text
    Action due_ = nullptr;   // asked for before the results
    QString errorMessage_;
    std::uint64_t generation_ = 0;
};

} // namespace tovi
