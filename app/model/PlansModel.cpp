#include "app/model/PlansModel.h"

#include "app/lists/QtConversions.h"
#include "app/model/FollowInIndex.h"
#include "app/model/PlanInstruction.h"
#include "base/Text.h"
#include "core/files/AuthorizedFolders.h"

#include <algorithm>

namespace tovi {
namespace {

QString nameOf(FileOperation operation) {
    return operation == FileOperation::trash ? QStringLiteral("trash") : QStringLiteral("rename");
}

QVariant sizeOf(const FileSnapshot& snapshot) {
    return QVariant::fromValue(static_cast<qint64>(snapshot.size));
}

QVariantList entriesOf(const ActionReceipt& receipt) {
    QVariantList entries;
    for (const ActionEntry& entry : receipt.entries) {
        entries.append(QVariantMap{{QStringLiteral("originalPath"), toQt(entry.originalPath)},
                                   {QStringLiteral("currentPath"), toQt(entry.currentPath)},
                                   {QStringLiteral("operation"), nameOf(entry.operation)},
                                   {QStringLiteral("size"), sizeOf(entry.snapshot)},
                                   {QStringLiteral("restored"), entry.restored}});
    }
    return entries;
}

int restoredCount(const ActionReceipt& receipt) {
    return static_cast<int>(std::count_if(receipt.entries.begin(), receipt.entries.end(),
                                          [](const ActionEntry& entry) { return entry.restored; }));
}

bool canUndo(const ActionReceipt& receipt) {
    return restoredCount(receipt) < static_cast<int>(receipt.entries.size());
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
           {"date", [](const ActionReceipt& receipt) { return toQt(receipt.date); }},
           {"count",
            [](const ActionReceipt& receipt) { return static_cast<int>(receipt.entries.size()); }},
           {"restoredCount", restoredCount},
           {"entries", entriesOf},
           {"undone", [](const ActionReceipt& receipt) { return receipt.undone; }},
           {"canUndo", canUndo},
           {"error",
            [](const ActionReceipt& receipt) { return toQt(receipt.error.value_or("")); }}}) {}

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

QVariantMap PlansModel::proposedPlanValues() const {
    if (!proposedPlan_) return {};
    QVariantList items;
    qint64 total = 0;
    for (const PlannedFileAction& item : proposedPlan_->items) {
        total += static_cast<qint64>(item.snapshot.size);
        items.append(QVariantMap{
            {QStringLiteral("sourcePath"), toQt(item.sourcePath)},
            {QStringLiteral("destinationPath"), toQt(item.destinationPath.value_or(""))},
            {QStringLiteral("operation"), nameOf(item.operation)},
            {QStringLiteral("size"), sizeOf(item.snapshot)},
            {QStringLiteral("freesNothing"), freesNothing(item, *proposedPlan_)}});
    }
    QStringList retained;
    for (const RetainedFile& file : proposedPlan_->retainedFiles)
        retained.append(toQt(file.path));
    return {{QStringLiteral("id"), toQt(proposedPlan_->id.string())},
            {QStringLiteral("title"), toQt(proposedPlan_->title)},
            {QStringLiteral("explanation"), toQt(proposedPlan_->explanation)},
            {QStringLiteral("totalSize"), total},
            {QStringLiteral("items"), items},
            {QStringLiteral("retainedFiles"), retained}};
}

void PlansModel::setPlan(std::optional<ActionPlan> plan, bool isVaultOriginalReview) {
    isPlanning_ = false;
    proposedPlan_ = std::move(plan);
    isVaultOriginalReview_ = proposedPlan_ && isVaultOriginalReview;
    Q_EMIT planChanged();
}

void PlansModel::propose(Request request) {
    if (!service_ || isExecuting_) return;
    planGeneration_.cancel();
    setPlan(std::nullopt, false);
    isPlanning_ = true;
    Q_EMIT planChanged();
    const bool isVaultOriginalReview = request.isVaultOriginalReview;
    runLatest(
        context_.executor, this, planGeneration_,
        [request = std::move(request), service = service_,
         roots = folders_.pathsInPlace()](const std::stop_token& stop) {
            return service->plan(request.files, request.operation, request.newName, roots(),
                                 request.keepers, stop);
        },
        [this, isVaultOriginalReview](Outcome<ActionPlan> outcome) {
            if (!outcome && !outcome.isCancelled) context_.notices.setError(outcome.error);
            setPlan(std::move(outcome.value), isVaultOriginalReview);
        });
}

void PlansModel::proposeTrash(const QStringList& paths) {
    propose({.files = recordsAt(fromQt(paths))});
}

void PlansModel::proposeRename(const QString& path, const QString& newName) {
    propose({.files = recordsAt({tovi::fromQt(path)}),
             .operation = FileOperation::rename,
             .newName = tovi::fromQt(newName)});
}

void PlansModel::proposeDuplicateTrash(const std::vector<FileRecord>& files,
                                       const std::vector<FileRecord>& keepers) {
    if (keepers.empty()) {
        return context_.notices.setError("No verified retained copy exists for this duplicate.");
    }
    propose({.files = files, .keepers = keepers});
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
    setPlan(std::nullopt, false);
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
    setPlan(std::nullopt, false);
    if (outcome) {
        const ActionReceipt& receipt = *outcome.value;
        context_.notices.setStatus(receipt.title);
        if (receipt.error) context_.notices.setError(*receipt.error);
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
            service->undo(id, roots());
        },
        [this](const Outcome<std::monostate>& outcome) {
            isExecuting_ = false;
            Q_EMIT planChanged();
            if (!outcome) context_.notices.setError(outcome.error);
            refreshHistory();
            Q_EMIT filesMoved();
        });
}

void PlansModel::undoLast() {
    const auto last = std::find_if(receipts().begin(), receipts().end(), canUndo);
    if (last != receipts().end()) undo(toQt(last->id.string()));
}

} // namespace tovi
