import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi

/// A file and what ties it to the one in the middle.
ItemDelegate {
    id: row

    required property string path
    required property string name
    required property string symbol
    required property string tie
    required property string kind
    required property int depth
    required property color color
    property string place: ""
    property bool isCurrent: false
    property bool isFocused: false

    height: 50
    padding: 0
    leftPadding: 10
    rightPadding: 10
    focusPolicy: Qt.NoFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: name
    Accessible.description: (depth === 0 ? qsTr("in the middle") : tie) + ", " + place
    Accessible.selected: isCurrent
    Accessible.onPressAction: clicked()
    ToolTip.text: path
    ToolTip.visible: hovered
    ToolTip.delay: 900

    background: Rectangle {
        radius: Theme.rowRadius
        color: row.isCurrent ? Theme.selected : row.hovered ? Theme.hover : "transparent"
        border.width: row.isFocused ? 2 : 0
        border.color: Theme.accent
    }
    contentItem: RowLayout {
        spacing: 10
        Rectangle {
            implicitWidth: 4
            implicitHeight: 32
            radius: 2
            color: row.color
        }
        AppIcon { symbol: row.symbol }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0
            AppText {
                Layout.fillWidth: true
                text: row.name
                elide: Text.ElideMiddle
                isStrong: row.depth === 0
                Accessible.ignored: true
            }
            AppText {
                Layout.fillWidth: true
                text: row.depth === 0 ? qsTr("in the middle")
                    : row.depth === 2 ? qsTr("two steps away · %1").arg(row.tie) : row.tie
                font.pixelSize: Theme.caption
                isSecondary: true
                Accessible.ignored: true
            }
        }
    }
}
