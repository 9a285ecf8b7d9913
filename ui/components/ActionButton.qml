import QtQuick
import QtQuick.Layouts
import Tovi

/// A button with words. One on a screen is primary; `isDanger` belongs into a review only.
Pressable {
    id: button

    property bool isPrimary: false
    property bool isDanger: false
    property string symbol: ""

    readonly property color fill: isDanger ? Theme.danger : isPrimary ? Theme.accent : Theme.raised
    readonly property color ink: !enabled ? Theme.disabled
        : isDanger ? Theme.dangerInk : isPrimary ? Theme.accentInk : Theme.text

    implicitHeight: Theme.controlHeight
    implicitWidth: content.implicitWidth + 28
    padding: 0
    Accessible.name: text

    contentItem: Item {
        RowLayout {
            id: content
            anchors.centerIn: parent
            spacing: 8
            AppIcon {
                visible: button.symbol !== ""
                symbol: button.symbol
                extent: 16
                color: button.ink
            }
            AppText {
                text: button.text
                color: button.ink
                isStrong: button.isPrimary || button.isDanger
                Accessible.ignored: true
            }
        }
    }
    background: Rectangle {
        radius: Theme.controlRadius
        color: !button.enabled ? Theme.background
            : button.down ? Qt.darker(button.fill, 1.12)
            : button.hovered ? (button.isPrimary || button.isDanger ? Qt.darker(button.fill, 1.06)
                                                                    : Qt.tint(button.fill, Theme.hover))
            : button.fill
        border.width: button.enabled && (button.isPrimary || button.isDanger) ? 0 : 1
        border.color: Theme.border
        FocusRing { control: button }
    }
}
