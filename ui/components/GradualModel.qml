import QtQuick
import Tovi.Models

/// Lets a repeater make its items in short steps, for all at once would keep the window waiting.
DelegateModel {
    id: gradual

    readonly property bool isWhole: waiting.count === 0
    /// Whether to make them later.
    property bool isHeld: false

    filterOnGroup: "made"
    groups: [
        DelegateModelGroup { name: "made" },
        DelegateModelGroup {
            id: waiting
            name: "waiting"
            includeByDefault: true
        }
    ]

    property StepwiseWork work: StepwiseWork {
        isWanted: !gradual.isWhole && !gradual.isHeld
        onStep: waiting.setGroups(0, 1, ["items", "made"])
    }
}
