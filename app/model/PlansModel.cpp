#include "app/model/PlansModel.h"

#include "app/lists/QtConversions.h"
#include "app/model/FollowInIndex.h"
#include "app/model/PlanInstruction.h"
#include "app/model/ReceiptRoles.h"
#include "base/Text.h"
#include "core/actions/ActionError.h"
#include "core/files/AuthorizedFolders.h"

#include <algorithm>
#include <filesystem>

namespace tovi {
namespace {

QString nameOf(FileOperation operation) {
    return operation == FileOperation::trash ? QStringLiteral("trash") : QStringLiteral("rename");
}

QVariant sizeOf(const FileSnapshot& snapshot) {
    return QVariant::fromValue(static_cast<qint64>(snapshot.size));
}

ReceiptFile fileOf(const ActionEntry& entry) {
    const bool isRename = entry.operation == FileOperation::rename;
    return {.path = entry.originalPath,
            .newName = isRename ? std::filesystem::path(entry.currentPath).filename().string() : "",
            .size = static_cast<std::int64_t>(entry.snapshot.size),
            .isRestored = entry.restored};
}

QString symbolOf(const ActionReceipt& receipt) {
    const bool isRename =
        !receipt.entries.empty() && receipt.entries.front().operation == FileOperation::rename;
    return isRename ? QStringLiteral("pencil") : QStringLiteral("trash");
}

std::vector<FileRecord> recordsAt(const std::vector<std::string>& paths) {
    std::vector<FileRecord> files;
    for (const std::string& path : paths)
        files.emplace_back().path = path;
    return files;
}

std::vector<std::string> fromQt(const QStringList& texts) {
    std::vector<std::string> list;
    for (const QString& text : texts)
        list.push_back(tovi::fromQt(text));
    return list;
}

} // namespace

PlansModel::PlansModel(ModelContext& context, const FoldersModel& folders)
    : context_(context),
      folders_(folders),
      actions_(
          [](const ActionReceipt& receipt) { return receipt.id.string(); },
          {{"id", [](const ActionReceipt& receipt) { return toQt(receipt.id.string()); }},
           {"title", [](const ActionReceipt& receipt) { return toQt(receipt.title); }},
           {"date", [](const ActionReceipt& receipt) { return toMilliseconds(receipt.date); }},
           {"count",
            [](const ActionReceipt& receipt) { return static_cast<int>(receipt.entries.size()); }},
           {"restoredCount", restoredCount<ActionReceipt>},
           {"firstPaths", firstPathsOf<ActionReceipt>},
           {"symbol", symbolOf},
           {"undone", [](const ActionReceipt& receipt) { return receipt.undone; }},
           {"canUndo", canUndo<ActionReceipt>},
           {"error",
            [](const ActionReceipt& receipt) { return toQt(receipt.error.value_or("")); }}}),
      items_(
          [](const PlannedFileAction& item) { return item.sourcePath; },
          {{"path", [](const PlannedFileAction& item) { return toQt(item.sourcePath); }},
           {"destinationPath",
            [](const PlannedFileAction& item) { return toQt(item.destinationPath.value_or("")); }},
           {"operation", [](const PlannedFileAction& item) { return nameOf(item.operation); }},
           {"size", [](const PlannedFileAction& item) { return sizeOf(item.snapshot); }},
           {"freesNothing", [this](const PlannedFileAction& item) {
                return proposedPlan_ && freesNothing(item, *proposedPlan_);
            }}}) {}

PlansModel::~PlansModel() {
    execution_.request_stop();
}

void PlansModel::setService(std::shared_ptr<FileActionService> service) {
    service_ = std::move(service);
    refreshHistory();
}

void PlansModel::refreshHistory() {
    if (!service_) return;
    runLatest(
        context_.executor, this, historyGeneration_,
        [service = service_](const std::stop_token&) { return service->history(); },
        [this](Outcome<std::vector<ActionReceipt>> outcome) {
            if (outcome) return actions_.replace(*std::move(outcome.value));
            if (!outcome.isCancelled) context_.notices.setError(outcome.error);
        });
}

void PlansModel::showReceipt(const QString& receipt) {
    std::vector<ReceiptFile> files;
    if (const int row = actions_.rowOf(receipt); row >= 0) {
        for (const ActionEntry& entry : receipts()[static_cast<std::size_t>(row)].entries)
            files.push_back(fileOf(entry));
    }
    receiptFiles_.replace(std::move(files));
}

QVariantMap PlansModel::proposedPlanValues() const {
    if (!proposedPlan_) return {};
    qint64 total = 0;
    for (const PlannedFileAction& item : proposedPlan_->items)
        total += static_cast<qint64>(item.snapshot.size);
    return {
        {QStringLiteral("id"), toQt(proposedPlan_->id.string())},
        {QStringLiteral("title"), toQt(proposedPlan_->title)},
        {QStringLiteral("explanation"), toQt(proposedPlan_->explanation)},
        {QStringLiteral("totalSize"), total},
        {QStringLiteral("isRename"),
         proposedPlan_->items.front().operation == FileOperation::rename},
        {QStringLiteral("retainedCount"), static_cast<int>(proposedPlan_->retainedFiles.size())},
        {QStringLiteral("leftCount"), static_cast<int>(leftCount_)}};
}

void PlansModel::setPlan(std::optional<Proposal> proposal) {
    isPlanning_ = false;
    isVaultOriginalReview_ = proposal && proposal->isVaultOriginalReview;
    leftCount_ = proposal ? proposal->left : 0;
    proposedPlan_.reset();
    if (proposal) proposedPlan_ = std::move(proposal->plan);
    items_.replace(proposedPlan_ ? proposedPlan_->items : std::vector<PlannedFileAction>());
    Q_EMIT planChanged();
}

PlansModel::Proposal PlansModel::make(const Request& request, FileActionService& service,
                                      const std::vector<std::string>& roots,
                                      const std::stop_token& stop) {
    if (!request.chooseCopies) {
        return {service.plan(request.files, request.operation, request.newName, roots, {}, stop),
                request.left, request.isVaultOriginalReview};
    }
    const CopiesToTrash copies = request.chooseCopies();
    if (copies.keepers().empty()) {
        throw ActionError("No verified retained copy exists for this duplicate.");
    }
    return {service.plan(copies.files(), FileOperation::trash, {}, roots, copies.keepers(), stop),
            copies.left(), false};
}

void PlansModel::propose(Request request) {
    if (!service_ || isExecuting_) return;
    planGeneration_.cancel();
    setPlan(std::nullopt);
    isPlanning_ = true;
    Q_EMIT planChanged();
    runLatest(
        context_.executor, this, planGeneration_,
        [request = std::move(request), service = service_, roots = folders_.pathsInPlace()](
            const std::stop_token& stop) { return make(request, *service, roots(), stop); },
        [this](Outcome<Proposal> outcome) {
            if (!outcome && !outcome.isCancelled) context_.notices.setError(outcome.error);
            setPlan(std::move(outcome.value));
        });
}

void PlansModel::proposeTrash(const QStringList& paths) {
    propose({.files = recordsAt(fromQt(paths))});
}

void PlansModel::proposePhotoTrash(const QStringList& paths) {
    CopiesToTrash photos;
    for (const FileRecord& photo : recordsAt(fromQt(paths)))
        photos.add(photo);
    propose({.files = photos.files(), .left = photos.left()});
}

void PlansModel::proposeRename(const QString& path, const QString& newName) {
    propose({.files = recordsAt({tovi::fromQt(path)}),
             .operation = FileOperation::rename,
             .newName = tovi::fromQt(newName)});
}

void PlansModel::proposeDuplicateTrash(std::function<CopiesToTrash()> choose) {
    propose({.chooseCopies = std::move(choose)});
}

void PlansModel::proposeVaultOriginalTrash(const QStringList& paths) {
    const AuthorizedFolders connected(folders_.availablePaths());
    std::vector<std::string> inside;
    for (const std::string& path : fromQt(paths)) {
        const auto resolved = resolvedFolders(path);
        if (resolved && connected.contains(*resolved)) inside.push_back(path);
    }
    if (inside.size() < static_cast<std::size_t>(paths.size())) {
        context_.notices.setError(
            "Your encrypted copies are saved. To remove originals outside your connected folders, "
            "use Finder. Originals and files in Trash are not encrypted.");
    }
    if (!inside.empty()) propose({.files = recordsAt(inside), .isVaultOriginalReview = true});
}

void PlansModel::cancelVaultOriginalReview() {
    if (isVaultOriginalReview_) cancelPlan();
}

void PlansModel::cancelPlan() {
    if (isExecuting_) return;
    planGeneration_.cancel();
    setPlan(std::nullopt);
}

void PlansModel::planAgent(const QString& instruction, const std::vector<std::string>& selection) {
    const auto plan = readInstruction(tovi::fromQt(instruction), selection.size());
    if (!plan) return context_.notices.setError(unsupportedInstruction);
    propose(
        {.files = recordsAt(selection), .operation = plan->operation, .newName = plan->newName});
}

void PlansModel::confirmPlan(const QString& reviewedID) {
    if (!service_ || isExecuting_ || !proposedPlan_) return;
    const std::vector<std::string> roots = folders_.availablePaths();
    const auto isConnected = [&](const PlannedFileAction& item) {
        return std::any_of(roots.begin(), roots.end(), [&](const std::string& root) {
            return isSameOrBelow(item.sourcePath, root);
        });
    };
    if (reviewedID != toQt(proposedPlan_->id.string()) ||
        !std::all_of(proposedPlan_->items.begin(), proposedPlan_->items.end(), isConnected)) {
        return context_.notices.setError(
            "The reviewed plan changed. Review the current paths before confirming.");
    }
    isExecuting_ = true;
    execution_ = std::stop_source();
    Q_EMIT planChanged();
    runInBackground(
        context_.executor, this, execution_.get_token(),
        [plan = *proposedPlan_, inPlace = folders_.pathsInPlace(), service = service_,
         index = context_.index](const std::stop_token& stop) {
            ActionReceipt receipt = service->execute(plan, plan.id, inPlace(), stop);
            if (index) followInIndex(receipt, index->store);
            return receipt;
        },
        [this](const Outcome<ActionReceipt>& outcome) { executionEnded(outcome); });
}

void PlansModel::executionEnded(const Outcome<ActionReceipt>& outcome) {
    isExecuting_ = false;
    setPlan(std::nullopt);
    if (outcome) {
        const ActionReceipt& receipt = *outcome.value;
        context_.notices.setStatus(receipt.title);
        if (receipt.error) context_.notices.setError(*receipt.error);
        for (const ActionEntry& entry : receipt.entries) {
            if (entry.operation == FileOperation::rename)
                Q_EMIT fileRenamed(toQt(entry.originalPath), toQt(entry.currentPath));
        }
        Q_EMIT executed(toQt(receipt.id.string()));
        if (!receipt.entries.empty()) Q_EMIT filesMoved();
    } else if (!outcome.isCancelled) {
        context_.notices.setError(outcome.error);
    }
    refreshHistory();
}

void PlansModel::stopExecution() {
    execution_.request_stop();
}

void PlansModel::undo(const QString& receipt) {
    const auto id = Uuid::parse(tovi::fromQt(receipt));
    if (!service_ || isExecuting_ || !id) return;
    isExecuting_ = true;
    Q_EMIT planChanged();
    runInBackground(
        context_.executor, this, {},
        [id = *id, roots = folders_.pathsInPlace(), service = service_](const std::stop_token&) {
            return service->undo(id, roots());
        },
        [this](const Outcome<ActionReceipt>& outcome) {
            isExecuting_ = false;
            Q_EMIT planChanged();
            if (outcome) {
                context_.notices.setStatus("Taken back: " + outcome.value->title);
                for (const ActionEntry& entry : outcome.value->entries) {
                    if (entry.operation == FileOperation::rename && entry.restored)
                        Q_EMIT fileRenamed(toQt(entry.currentPath), toQt(entry.originalPath));
                }
                Q_EMIT undone();
            } else {
                context_.notices.setError(outcome.error);
            }
            refreshHistory();
            Q_EMIT filesMoved();
        });
}

const ActionReceipt* PlansModel::lastChange() const {
    const auto last = std::find_if(receipts().begin(), receipts().end(), canUndo<ActionReceipt>);
    return last == receipts().end() ? nullptr : &*last;
}

void PlansModel::undoLast() {
    if (const ActionReceipt* last = lastChange()) undo(toQt(last->id.string()));
}

} // namespace tovi
