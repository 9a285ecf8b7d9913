#pragma once

#include "app/lists/DifferenceListModel.h"
#include "app/model/FoldersModel.h"
#include "core/actions/FileActionService.h"

#include <QStringList>
#include <QVariantMap>
#include <memory>
#include <optional>

namespace tovi {

/// Plans to change files: proposed, reviewed, confirmed and taken back.
class PlansModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QVariantMap proposedPlan READ proposedPlanValues NOTIFY planChanged)
    Q_PROPERTY(bool isVaultOriginalReview READ isVaultOriginalReview NOTIFY planChanged)
    Q_PROPERTY(bool isPlanning READ isPlanning NOTIFY planChanged)
    Q_PROPERTY(bool isExecuting READ isExecuting NOTIFY planChanged)
    Q_PROPERTY(tovi::RowListModel* actions READ actions CONSTANT)

  public:
    PlansModel(ModelContext& context, const FoldersModel& folders);
    ~PlansModel() override;

    /// The plan that waits for review.
    const std::optional<ActionPlan>& proposedPlan() const { return proposedPlan_; }
    /// id, title, explanation, totalSize, items (list of sourcePath, destinationPath, operation,
    /// size, freesNothing) and retainedFiles (paths); empty without a plan.
    QVariantMap proposedPlanValues() const;
    /// Whether the plan removes originals of which the vault has copies now.
    bool isVaultOriginalReview() const { return isVaultOriginalReview_; }
    bool isPlanning() const { return isPlanning_; }
    bool isExecuting() const { return isExecuting_; }

    /// Receipts, newest first. Roles: id, title, date, count, restoredCount, entries (list of
    /// originalPath, currentPath, operation, size, restored), undone, canUndo, error.
    RowListModel* actions() { return &actions_; }
    const std::vector<ActionReceipt>& receipts() const { return actions_.rows(); }

    /// Each proposal replaces the one before it; a refusal is the error message.
    Q_INVOKABLE void proposeTrash(const QStringList& paths);
    Q_INVOKABLE void proposeRename(const QString& path, const QString& newName);
    void proposeDuplicateTrash(const std::vector<FileRecord>& files,
                               const std::vector<FileRecord>& keepers);
    Q_INVOKABLE void proposeVaultOriginalTrash(const QStringList& paths);
    Q_INVOKABLE void cancelVaultOriginalReview();
    Q_INVOKABLE void cancelPlan();

    /// Reads an instruction such as "trash selected" or "rename selected to notes.txt".
    void planAgent(const QString& instruction, const std::vector<std::string>& selection);

    /// Executes the plan that the user reviewed, which `reviewedID` names. Refused where another
    /// plan waits meanwhile, or where its files no longer lie in connected folders.
    Q_INVOKABLE void confirmPlan(const QString& reviewedID);
    /// Asks an execution to stop after the file it is at.
    Q_INVOKABLE void stopExecution();
    Q_INVOKABLE void undo(const QString& receipt);
    Q_INVOKABLE void undoLast();

    void setService(std::shared_ptr<FileActionService> service);
    void refreshHistory();

  Q_SIGNALS:
    void planChanged();
    void filesMoved(); // the index follows the files already; a scan would find the rest
    void executed(const QString& receipt);

  private:
    struct Request {
        std::vector<FileRecord> files = {};
        FileOperation operation = FileOperation::trash;
        std::optional<std::string> newName = {};
        std::vector<FileRecord> keepers = {};
        bool isVaultOriginalReview = false;
    };
    void propose(Request request);
    void setPlan(std::optional<ActionPlan> plan, bool isVaultOriginalReview);
    void executionEnded(const Outcome<ActionReceipt>& outcome);

    ModelContext& context_;
    const FoldersModel& folders_;
    std::shared_ptr<FileActionService> service_;
    DifferenceListModel<ActionReceipt> actions_;
    std::optional<ActionPlan> proposedPlan_;
    bool isVaultOriginalReview_ = false;
    bool isPlanning_ = false;
    bool isExecuting_ = false;
    Generation planGeneration_;
    Generation historyGeneration_;
    std::stop_source execution_;
};

} // namespace tovi
