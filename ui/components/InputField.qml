import QtQuick
import QtQuick.Controls.Basic
import Tovi

/// One line of text with an optional symbol before it; `label` is its name.
TextField {
    id: field

    required property string label
    property string symbol: ""

    implicitHeight: Theme.controlHeight
    readonly property bool isMirrored: LayoutMirroring.enabled
    readonly property int room: symbol ? 36 : 12
    leftPadding: isMirrored ? 12 : room
    rightPadding: isMirrored ? room : 12
    font.pixelSize: Theme.body
    color: Theme.text
    placeholderTextColor: Theme.secondaryText
    selectionColor: Theme.accent
    selectedTextColor: Theme.accentInk
    selectByMouse: true
    horizontalAlignment: TextInput.AlignLeft // which a mirrored window mirrors
    verticalAlignment: TextInput.AlignVCenter
    Accessible.name: label

    background: Rectangle {
        radius: Theme.controlRadius
        color: Theme.surface
        border.width: field.activeFocus ? 2 : 1
        border.color: field.activeFocus ? Theme.accent : Theme.outline
        AppIcon {
            visible: field.symbol !== ""
            symbol: field.symbol
            x: field.isMirrored ? parent.width - width - 11 : 11
            anchors.verticalCenter: parent.verticalCenter
        }
    }
}
