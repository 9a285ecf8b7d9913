import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi

/// One file in the quick search panel.
ItemDelegate {
    id: row

    required property int index
    required property string name
    required property string folder
    required property string symbol
    required property bool isCurrent
    required property string description
    /// Among the visible rows, from 1: its key with Alt.
    required property int place

    verticalPadding: 0
    leftPadding: 12
    rightPadding: 12
    focusPolicy: Qt.NoFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: name
    Accessible.description: description
    Accessible.selected: isCurrent
    Accessible.onPressAction: clicked()

    contentItem: RowLayout {
        spacing: 12
        AppIcon {
            symbol: row.symbol
            color: row.isCurrent ? Theme.accentText : Theme.secondaryText
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0
            AppText {
                Layout.fillWidth: true
                text: row.name
                textFormat: Text.PlainText
                elide: Text.ElideMiddle
                maximumLineCount: 1
                isStrong: row.isCurrent
                Accessible.ignored: true
            }
            AppText {
                Layout.fillWidth: true
                text: Format.path(row.folder)
                textFormat: Text.PlainText
                elide: Text.ElideMiddle
                maximumLineCount: 1
                isSecondary: true
                font.pixelSize: Theme.caption
                Accessible.ignored: true
            }
        }
        AppText {
            visible: row.place >= 1 && row.place <= 8
            text: qsTr("Alt+%1").arg(row.place)
            isSecondary: true
            font.pixelSize: Theme.caption
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        radius: Theme.rowRadius
        color: row.isCurrent ? Theme.selected : row.hovered ? Theme.hover : "transparent"
        Rectangle {
            visible: row.isCurrent
            width: 3
            radius: 1.5
            height: parent.height - 14
            anchors.verticalCenter: parent.verticalCenter
            x: row.mirrored ? parent.width - width - 2 : 2
            color: Theme.accent
        }
    }
}
