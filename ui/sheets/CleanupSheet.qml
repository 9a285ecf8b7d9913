import QtQuick
import Tovi
import Tovi.Models

/// What was chosen to be cleaned up and waits for review.
ReviewSheet {
    id: sheet

    readonly property var plan: Cleanup.proposedPlan

    visible: plan.id !== undefined
    heading: qsTr("%1, %2").arg(confirmText).arg(Format.size(plan.totalSize || 0))
    explanation: plan.explanation || ""
    rows: Cleanup.plannedItems
    symbol: "trash"
    noteOf: item => item.categoryTitle
    confirmText: plan.title || ""
    confirmObjectName: "cleanup-confirm-trash"
    isExecuting: Cleanup.isExecuting
    onConfirmed: Cleanup.confirm(plan.id)
    onStopped: Cleanup.stopExecution()
    onCancelled: if (plan.id !== undefined && !isExecuting) Cleanup.cancelReview()
}
