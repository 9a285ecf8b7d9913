import QtQuick
import Tovi

/// Shows where the keyboard is: two pixels, with a gap of two, around its parent.
Rectangle {
    required property Item control
    property int cornerRadius: Theme.controlRadius

    anchors.fill: parent
    anchors.margins: -4
    radius: cornerRadius + 4
    color: "transparent"
    border.width: 2
    border.color: Theme.accent
    visible: control.activeFocus && control.focusReason !== Qt.MouseFocusReason
}
