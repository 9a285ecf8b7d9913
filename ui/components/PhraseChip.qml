import QtQuick
import QtQuick.Layouts
import Tovi

/// How a part of a phrase was understood; a click, Delete or Backspace takes its words out.
Pressable {
    id: chip

    implicitHeight: label.implicitHeight + 10
    implicitWidth: row.implicitWidth + 22
    Accessible.name: qsTr("Remove %1").arg(text)
    Keys.onDeletePressed: clicked()
    Keys.onPressed: event => {
        event.accepted = event.key === Qt.Key_Backspace
        if (event.accepted)
            clicked()
    }

    contentItem: Item {
        RowLayout {
            id: row
            anchors.centerIn: parent
            spacing: 6
            AppText {
                id: label
                text: chip.text
                color: Theme.accentText
                font.pixelSize: Theme.caption
                isStrong: true
                Accessible.ignored: true
            }
            AppIcon {
                symbol: "xmark"
                extent: 12
                color: Theme.accentText
            }
        }
    }
    background: Rectangle {
        radius: height / 2
        color: chip.hovered ? Qt.tint(Theme.selected, Theme.hover) : Theme.selected
        FocusRing {
            control: chip
            cornerRadius: 12
        }
    }
}
