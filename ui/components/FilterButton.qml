import QtQuick
import QtQuick.Layouts
import Tovi

/// One of several choices in a row, of which one is current.
Pressable {
    id: button

    property string symbol: ""
    property bool isCurrent: false

    implicitHeight: Math.max(28, label.implicitHeight + 10)
    implicitWidth: row.implicitWidth + 24
    Accessible.role: Accessible.RadioButton
    Accessible.name: text
    Accessible.checked: isCurrent

    contentItem: Item {
        RowLayout {
            id: row
            anchors.centerIn: parent
            spacing: 6
            AppIcon {
                visible: button.symbol !== ""
                symbol: button.symbol
                extent: 14
                color: label.color
            }
            AppText {
                id: label
                text: button.text
                font.pixelSize: Theme.caption
                isStrong: button.isCurrent
                color: button.isCurrent ? Theme.accentText : Theme.secondaryText
                Accessible.ignored: true
            }
        }
    }
    background: Rectangle {
        radius: height / 2
        color: button.isCurrent ? Theme.selected : button.hovered ? Theme.hover : Theme.surface
        border.width: 1
        border.color: button.isCurrent ? Theme.accent : Theme.border
        FocusRing {
            control: button
            cornerRadius: 14
        }
    }
}
