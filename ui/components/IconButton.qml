import QtQuick
import QtQuick.Controls.Basic
import Tovi

/// A button with a symbol only; `label` is its name and its tooltip.
Pressable {
    id: button

    required property string symbol
    required property string label

    implicitWidth: 32
    implicitHeight: 32
    padding: 0
    Accessible.name: label
    ToolTip.text: label
    ToolTip.visible: visible && (hovered || (visualFocus && activeFocus))
    ToolTip.delay: 600

    contentItem: Item {
        AppIcon {
            anchors.centerIn: parent
            symbol: button.symbol
            color: button.enabled ? Theme.text : Theme.disabled
        }
    }
    background: Rectangle {
        radius: Theme.controlRadius
        color: button.down ? Theme.selected : button.hovered ? Theme.hover : "transparent"
        FocusRing { control: button }
    }
}
