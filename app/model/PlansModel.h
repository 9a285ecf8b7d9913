#pragma once

#include "app/lists/DifferenceListModel.h"
#include "app/model/FoldersModel.h"
#include "app/model/ReceiptFiles.h"
#include "core/actions/CopiesToTrash.h"
#include "core/actions/FileActionService.h"

#include <QStringList>
#include <QVariantMap>
#include <functional>
#include <memory>
#include <optional>

namespace tovi {

/// Plans to change files: proposed, reviewed, confirmed and taken back.
class PlansModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QVariantMap proposedPlan READ proposedPlanValues NOTIFY planChanged)
    Q_PROPERTY(bool isVaultOriginalReview READ isVaultOriginalReview NOTIFY planChanged)
    Q_PROPERTY(tovi::RowListModel* plannedItems READ plannedItems CONSTANT)
    Q_PROPERTY(bool isPlanning READ isPlanning NOTIFY planChanged)
    Q_PROPERTY(bool isExecuting READ isExecuting NOTIFY planChanged)
    Q_PROPERTY(tovi::RowListModel* actions READ actions CONSTANT)
    Q_PROPERTY(tovi::RowListModel* receiptFiles READ receiptFiles CONSTANT)

  public:
    PlansModel(ModelContext& context, const FoldersModel& folders);
    ~PlansModel() override;

    /// The plan that waits for review.
    const std::optional<ActionPlan>& proposedPlan() const { return proposedPlan_; }
    /// id, title, explanation, totalSize, isRename, retainedCount and leftCount (files for which
    /// the plan had no room); empty without a plan.
    QVariantMap proposedPlanValues() const;
    /// Its files. Roles: path, destinationPath, operation, size and freesNothing.
    RowListModel* plannedItems() { return &items_; }
    /// Whether the plan removes originals of which the vault has copies now.
    bool isVaultOriginalReview() const { return isVaultOriginalReview_; }
    bool isPlanning() const { return isPlanning_; }
    bool isExecuting() const { return isExecuting_; }

    /// Receipts, newest first. Roles: id, title, date, count, restoredCount, firstPaths (where
    /// the first three files were), symbol, undone, canUndo, error.
    RowListModel* actions() { return &actions_; }
    const std::vector<ActionReceipt>& receipts() const { return actions_.rows(); }

    /// All files of the receipt that was asked for last.
    RowListModel* receiptFiles() { return &receiptFiles_; }
    Q_INVOKABLE void showReceipt(const QString& receipt);

    /// Each proposal replaces the one before it; a refusal is the error message.
    Q_INVOKABLE void proposeTrash(const QStringList& paths);
    /// As many of these look-alikes as one plan takes.
    Q_INVOKABLE void proposePhotoTrash(const QStringList& paths);
    Q_INVOKABLE void proposeRename(const QString& path, const QString& newName);
    /// `choose` is called away from the main thread.
    void proposeDuplicateTrash(std::function<CopiesToTrash()> choose);
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
    /// The last one that can be undone; none if there is none. Valid until the receipts change.
    const ActionReceipt* lastChange() const;

    void setService(std::shared_ptr<FileActionService> service);
    void refreshHistory();

  Q_SIGNALS:
    void planChanged();
    void fileRenamed(const QString& from, const QString& to);
    void filesMoved(); // the index follows the files already; a scan would find the rest
    void executed(const QString& receipt);
    void undone(); // the status says what

  private:
    struct Request {
        std::vector<FileRecord> files = {};
        FileOperation operation = FileOperation::trash;
        std::optional<std::string> newName = {};
        std::function<CopiesToTrash()> chooseCopies = {}; // instead of `files`
        std::size_t left = 0;                             // of `files`, for a further plan
        bool isVaultOriginalReview = false;
    };
    void propose(Request request);
    struct Proposal {
        ActionPlan plan;
        std::size_t left = 0;
        bool isVaultOriginalReview = false;
    };
    static Proposal make(const Request& request, FileActionService& service,
                         const std::vector<std::string>& roots, const std::stop_token& stop);
    void setPlan(std::optional<Proposal> proposal);
    void executionEnded(const Outcome<ActionReceipt>& outcome);

    ModelContext& context_;
    const FoldersModel& folders_;
    std::shared_ptr<FileActionService> service_;
    DifferenceListModel<ActionReceipt> actions_;
    ReceiptFiles receiptFiles_;
    std::optional<ActionPlan> proposedPlan_;
    DifferenceListModel<PlannedFileAction> items_; // of the plan
    std::size_t leftCount_ = 0;
    bool isVaultOriginalReview_ = false;
    bool isPlanning_ = false;
    bool isExecuting_ = false;
    Generation planGeneration_;
    Generation historyGeneration_;
    std::stop_source execution_;
};

} // namespace tovi
