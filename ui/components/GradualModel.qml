import QtQuick

/// Lets a repeater make a few of its items with every frame of the window, for all at once would
/// keep it waiting.
DelegateModel {
    id: gradual

    required property var window
    readonly property bool isWhole: made.count === items.count

    filterOnGroup: "made"
    groups: DelegateModelGroup {
        id: made
        name: "made"
    }
    items.onChanged: if (!isWhole && window) window.update()

    property Connections frames: Connections {
        target: gradual.window
        enabled: !gradual.isWhole
        function onFrameSwapped() {
            for (let row = 0, left = 6; row < gradual.items.count && left > 0; ++row) {
                if (gradual.items.get(row).inMade)
                    continue
                gradual.items.addGroups(row, 1, "made")
                --left
            }
        }
    }
}
