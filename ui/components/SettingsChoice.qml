import QtQuick
import QtQuick.Layouts
import Tovi

/// A setting with a few values, all of them visible.
RowLayout {
    id: choice

    required property string label
    /// Each with `value` and `text`.
    required property var options
    required property string current

    signal chosen(string value)

    spacing: 8
    Accessible.role: Accessible.Grouping
    Accessible.name: label

    AppText {
        Layout.preferredWidth: 160
        text: choice.label
    }
    Repeater {
        model: choice.options
        FilterButton {
            required property var modelData
            text: modelData.text
            isCurrent: choice.current === modelData.value
            Accessible.description: choice.label
            onClicked: choice.chosen(modelData.value)
        }
    }
    Item { Layout.fillWidth: true }
}
