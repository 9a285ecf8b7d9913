#pragma once

#include "app/cleanup/CleanupModel.h"
#include "app/model/AppModel.h"

namespace tovi {

/// What is to be told of finished work: counts, never the name of a file.
struct LongWorkNotice {
    QString title;
    QString text;
    QString section;            // where its outcome is shown
    std::function<void()> undo; // none where nothing can be taken back
};

/// Notices that work which took long has ended: the first scan, the search for duplicates, and
/// files moved to the Trash. The vault's work is not among it, as the vault locks when another
/// program comes to the front. Lives on the main thread.
class LongWorkNotices : public QObject {
    Q_OBJECT

  public:
    static constexpr double longTime = 10; // seconds

    /// What is given outlives the notices.
    LongWorkNotices(Executor& executor, AppModel& model, CleanupModel& cleanup);

  Q_SIGNALS:
    void ended(const tovi::LongWorkNotice& notice);

  private:
    /// One kind of work.
    struct Work {
        bool isRunning = false;
        double begun = 0; // uptime
    };

    /// Whether the work has begun since the last call.
    bool begins(Work& work, bool isRunning) const;
    bool wasLong(const Work& work) const { return executor_.uptime() - work.begun >= longTime; }
    void followDuplicates();

    Executor& executor_;
    AppModel& model_;
    CleanupModel& cleanup_;
    Work scan_;
    Work duplicates_;
    Work plan_;
    Work cleaning_;
    bool isFirstScan_ = false;
};

} // namespace tovi
