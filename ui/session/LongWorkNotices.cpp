#include "ui/session/LongWorkNotices.h"

#include <QLocale>
#include <utility>

namespace tovi {

LongWorkNotices::LongWorkNotices(Executor& executor, AppModel& model, CleanupModel& cleanup)
    : executor_(executor), model_(model), cleanup_(cleanup) {
    connect(model_.scan(), &ScanModel::changed, this, [this] {
        if (begins(scan_, model_.scan()->isIndexing()))
            isFirstScan_ = model_.scan()->indexedCount() == 0;
    });
    connect(model_.scan(), &ScanModel::scanEnded, this, [this](bool hasCompleted) {
        if (hasCompleted && isFirstScan_ && wasLong(scan_)) {
            Q_EMIT ended({tr("Your files are ready to be searched"),
                          tr("Files in the index: %1")
                              .arg(QLocale().toString(model_.scan()->indexedCount())),
                          QStringLiteral("files"),
                          {}});
        }
    });
    connect(model_.duplicates(), &DuplicatesModel::changed, this,
            &LongWorkNotices::followDuplicates);
    connect(model_.plans(), &PlansModel::planChanged, this,
            [this] { begins(plan_, model_.plans()->isExecuting()); });
    connect(model_.plans(), &PlansModel::executed, this, [this](const QString& receipt) {
        if (!wasLong(plan_)) return;
        Q_EMIT ended({tr("Done"), model_.notices()->statusMessage(), QStringLiteral("activity"),
                      [this, receipt] { model_.plans()->undo(receipt); }});
    });
    connect(&cleanup_, &CleanupModel::changed, this,
            [this] { begins(cleaning_, cleanup_.isExecuting()); });
    connect(&cleanup_, &CleanupModel::executed, this, [this](const QString& receipt) {
        if (!wasLong(cleaning_)) return;
        Q_EMIT ended({tr("Cleanup finished"), model_.notices()->statusMessage(),
                      QStringLiteral("storage"), [this, receipt] { cleanup_.undo(receipt); }});
    });
}

bool LongWorkNotices::begins(Work& work, bool isRunning) const {
    const bool wasRunning = std::exchange(work.isRunning, isRunning);
    if (wasRunning || !isRunning) return false;
    work.begun = executor_.uptime();
    return true;
}

void LongWorkNotices::followDuplicates() {
    const DuplicatesModel& found = *model_.duplicates();
    const bool wasRunning = duplicates_.isRunning;
    begins(duplicates_, found.isFindingDuplicates());
    if (!wasRunning || duplicates_.isRunning || !found.hasSearched() || !wasLong(duplicates_))
        return;
    const QLocale locale;
    Q_EMIT ended(
        {tr("Duplicates were searched for"),
         tr("Groups of copies: %1, reclaimable: %2")
             .arg(locale.toString(found.groupCount()),
                  locale.formattedDataSize(found.reclaimableBytes(), 1, QLocale::DataSizeSIFormat)),
         QStringLiteral("duplicates"),
         {}});
}

} // namespace tovi
