import QtQuick
import Tovi
import Tovi.Models

/// The plan that waits for review.
ReviewSheet {
    id: sheet

    readonly property var plan: App.plans.proposedPlan
    readonly property bool isRename: plan.isRename === true
    readonly property string kept: plan.retainedCount > 0
        ? qsTr("%1 kept").arg(Format.counted(plan.retainedCount, qsTr("copy"), qsTr("copies"))) : ""
    readonly property string left: plan.leftCount > 0
        ? qsTr("%1 more for a further plan").arg(kept !== ""
            ? Format.counted(plan.leftCount, qsTr("copy"), qsTr("copies"))
            : Format.counted(plan.leftCount, qsTr("photo"), qsTr("photos"))) : ""

    visible: plan.id !== undefined
    heading: isRename ? confirmText : qsTr("%1, %2").arg(confirmText).arg(Format.size(plan.totalSize || 0))
    explanation: plan.explanation || ""
    warning: App.plans.isVaultOriginalReview
        ? qsTr("The Vault copy is encrypted. These originals will remain unencrypted in Trash. Other copies and backups stay outside the Vault.")
        : ""
    remark: [kept, left].filter(text => text !== "").join(" · ")
    rows: App.plans.plannedItems
    symbol: isRename ? "pencil" : "trash"
    noteOf: item => isRename ? qsTr("becomes %1").arg(Format.fileName(item.destinationPath))
        : item.freesNothing ? qsTr("frees nothing: another name of it stays") : ""
    confirmText: (isRename ? qsTr("Rename %1") : qsTr("Move %1 to Trash"))
        .arg(Format.counted(rows.count, qsTr("file"), qsTr("files")))
    confirmObjectName: "plan-confirm"
    isDanger: !isRename
    isExecuting: App.plans.isExecuting
    onConfirmed: App.plans.confirmPlan(plan.id)
    onStopped: App.plans.stopExecution()
    onCancelled: if (plan.id !== undefined && !isExecuting)
        App.plans.isVaultOriginalReview ? App.plans.cancelVaultOriginalReview() : App.plans.cancelPlan()
}
