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
    /// 0 for as much as the label takes.
    property int labelWidth: 160

    signal chosen(string value)

    spacing: 8
    Accessible.role: Accessible.Grouping
    Accessible.name: label

    AppText {
        Layout.preferredWidth: choice.labelWidth > 0 ? choice.labelWidth : implicitWidth
        Layout.rightMargin: 4
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
