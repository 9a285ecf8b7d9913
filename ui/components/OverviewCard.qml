import QtQuick
import QtQuick.Layouts
import Tovi

/// A figure that leads to the screen behind it.
Pressable {
    id: card

    required property string symbol
    required property string value

    Layout.fillWidth: true
    Layout.preferredWidth: 1 // all alike
    implicitHeight: 96
    padding: 16
    Accessible.name: value + " " + text

    background: Rectangle {
        radius: Theme.cardRadius
        color: card.hovered ? Qt.tint(Theme.surface, Theme.hover) : Theme.surface
        border.width: 1
        border.color: Theme.border
        FocusRing {
            control: card
            cornerRadius: Theme.cardRadius
        }
    }
    contentItem: RowLayout {
        spacing: 14
        Rectangle {
            implicitWidth: 40
            implicitHeight: 40
            radius: 20
            color: Theme.selected
            AppIcon {
                anchors.centerIn: parent
                symbol: card.symbol
                color: Theme.accentText
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0
            AppText {
                Layout.fillWidth: true
                text: card.value
                font.pixelSize: Theme.title
                isStrong: true
                Accessible.ignored: true
            }
            AppText {
                Layout.fillWidth: true
                text: card.text
                isSecondary: true
                Accessible.ignored: true
            }
        }
    }
}
