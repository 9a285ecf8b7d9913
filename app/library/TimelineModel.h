#pragma once

#include "app/background/Background.h"
#include "app/lists/RecordList.h"
#include "core/library/Timeline.h"

#include <memory>
#include <set>

namespace tovi {

/// When files were modified: the periods that have some, and the files themselves from a chosen
/// date on, the newest first.
class TimelineModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::RowListModel* periods READ periods CONSTANT)
    Q_PROPERTY(tovi::RowListModel* files READ files CONSTANT)
    Q_PROPERTY(QString unit READ unit WRITE setUnit NOTIFY changed)
    Q_PROPERTY(double before READ before NOTIFY changed)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
    Q_PROPERTY(bool hasLoaded READ hasLoaded NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(bool hasMorePeriods READ hasMorePeriods NOTIFY changed)
    Q_PROPERTY(bool hasMoreFiles READ hasMoreFiles NOTIFY changed)

  public:
    static constexpr std::size_t periodsAtOnce = 60;
    static constexpr std::int64_t filesAtOnce = 500;

    /// Asks for the calendar whenever it reads, for it may change, as on a journey.
    TimelineModel(Executor& executor, std::function<UserCalendar()> calendar);

    /// The index to read from now on; none while it is closed.
    void setIndex(std::shared_ptr<IndexStore> index);

    /// Roles: id (its start, as text), end (not included), count, bytes. Moments, here and below,
    /// are milliseconds since the epoch.
    RowListModel* periods() { return &periods_; }
    /// Roles of a file, and period: the id of the one it was modified in.
    RowListModel* files() { return &files_; }
    const std::vector<FileRecord>& records() const { return files_.rows(); }

    /// "day", "week" or "month".
    QString unit() const;
    void setUnit(const QString& unit);
    /// The files shown were modified before this; not a number if all are shown.
    double before() const;

    bool isLoading() const { return isLoading_; }
    bool hasLoaded() const { return hasLoaded_; }
    QString error() const { return error_; }
    bool hasMorePeriods() const { return hasMorePeriods_; }
    bool hasMoreFiles() const { return hasMoreFiles_; }

    /// Reads anew what is shown, as after a change of the library.
    Q_INVOKABLE void refresh();
    /// Shows the files from the end of the day of a moment on; all files if it is not a number.
    Q_INVOKABLE void jumpTo(double moment);
    Q_INVOKABLE void loadMorePeriods();
    Q_INVOKABLE void loadMoreFiles();

  Q_SIGNALS:
    void changed();

  private:
    struct Files {
        std::vector<FileRecord> files;
        std::set<Date> starts; // of their periods
    };

    void loadPeriods(std::size_t count);
    void loadFiles(std::int64_t count);
    QString periodOf(const FileRecord& file) const;
    void clear();

    Executor& executor_;
    std::function<UserCalendar()> calendar_;
    std::shared_ptr<IndexStore> index_;
    DifferenceListModel<TimelinePeriod> periods_;
    RecordList files_;
    std::set<Date> starts_;
    CalendarUnit unit_ = CalendarUnit::day;
    std::optional<Date> before_;
    QString error_;
    bool isLoading_ = false;
    bool hasLoaded_ = false;
    bool hasMorePeriods_ = false;
    bool hasMoreFiles_ = false;
    std::size_t shownPeriods_ = periodsAtOnce;
    std::int64_t shownFiles_ = filesAtOnce;
    Generation periodsGeneration_;
    Generation filesGeneration_;
};

} // namespace tovi
