import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi

/// A photo that can be marked, with what helps to choose it.
CheckDelegate {
    id: tile

    required property var photo
    property bool isKeeper: false
    property bool isMarked: false

    readonly property string measures: qsTr("%1 × %2").arg(photo.width).arg(photo.height)

    padding: 10
    topPadding: 40
    checkable: false // marked by the screen
    focusPolicy: Qt.StrongFocus
    indicator: null
    Accessible.name: photo.name
    Accessible.checked: isMarked
    Accessible.onPressAction: clicked()
    Accessible.onToggleAction: clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    Accessible.description: [isKeeper ? qsTr("Keep") : "", measures, Format.size(photo.size),
        Format.date(photo.modifiedAt), Format.path(photo.folder)].filter(part => part !== "").join(", ")
    ToolTip.text: photo.path
    ToolTip.visible: hovered
    ToolTip.delay: 900

    background: Rectangle {
        radius: Theme.controlRadius
        color: tile.isMarked ? Theme.dangerBackground : tile.hovered ? Theme.hover : Theme.background
        border.width: tile.isMarked ? 2 : 1
        border.color: tile.isMarked ? Theme.danger : Theme.border
        FocusRing { control: tile }
    }
    contentItem: ColumnLayout {
        spacing: 4
        FilePicture {
            Layout.fillWidth: true
            Layout.preferredHeight: 132
            path: tile.photo.path
            kind: tile.photo.kind
            symbol: tile.photo.symbol
            version: tile.photo.modifiedAt
            side: 336
        }
        AppText {
            Layout.fillWidth: true
            text: tile.photo.name
            elide: Text.ElideMiddle
            isStrong: true
            Accessible.ignored: true
        }
        Repeater {
            model: [
                tile.measures + "  ·  " + Format.size(tile.photo.size),
                Format.dateTime(tile.photo.modifiedAt),
                Format.path(tile.photo.folder)
            ]
            AppText {
                required property string modelData
                Layout.fillWidth: true
                text: modelData
                elide: Text.ElideMiddle
                font.pixelSize: Theme.caption
                isSecondary: true
                Accessible.ignored: true
            }
        }
    }
    Chip {
        anchors.top: parent.top
        anchors.left: parent.left
        anchors.margins: 8
        visible: tile.isKeeper
        text: qsTr("Keep")
        symbol: "checkmark"
    }
    Rectangle {
        anchors.top: parent.top
        anchors.right: parent.right
        anchors.margins: 8
        width: 24
        height: 24
        radius: 6
        color: tile.isMarked ? Theme.danger : Theme.surface
        border.width: tile.isMarked ? 0 : 1
        border.color: Theme.outline
        AppIcon {
            anchors.centerIn: parent
            visible: tile.isMarked
            symbol: "trash"
            extent: 15
            color: Theme.dangerInk
        }
    }
}
