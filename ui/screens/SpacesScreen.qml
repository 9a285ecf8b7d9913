import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// Projects: files that belong together, wherever they lie.
FocusScope {
    id: screen

    readonly property string title: qsTr("Spaces")
    readonly property var spaces: App.spaces.spaces

    function create() {
        if (App.spaces.createSpace(field.text, App.selection.selectedIDs) !== "")
            field.clear()
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        spacing: 16

        ScreenHeader {
            Layout.fillWidth: true
            title: screen.title
            subtitle: qsTr("Files that belong together stay where they are")
        }
        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            InputField {
                id: field
                focus: true
                Layout.fillWidth: true
                Layout.maximumWidth: 420
                label: qsTr("Name of a new space")
                placeholderText: label
                onAccepted: screen.create()
            }
            ActionButton {
                text: App.selection.selectedIDs.length > 0
                    ? qsTr("Create with %1").arg(Format.counted(App.selection.selectedIDs.length, qsTr("file"), qsTr("files")))
                    : qsTr("Create")
                symbol: "plus"
                isPrimary: true
                enabled: field.text.trim() !== ""
                onClicked: screen.create()
            }
        }
        Banner {
            Layout.fillWidth: true
            visible: App.spaces.showsDeletedSpaceNotice
            isError: false
            text: qsTr("“%1” was removed. Its files stay where they are.").arg(App.spaces.recentlyDeletedName)
            action: qsTr("Undo")
            onActed: App.spaces.restoreDeletedSpace()
            onDismissed: App.spaces.dismissDeletedSpaceNotice()
        }
        GradualList {
            id: list
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: count > 0
            clip: true
            spacing: 12
            model: screen.spaces
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar {}
            Accessible.role: Accessible.List
            Accessible.name: screen.title
            delegate: Card {
                id: space

                required property int index
                required property string id
                required property string name
                required property var paths
                required property int count

                width: ListView.view.width
                height: column.implicitHeight + 32
                Accessible.role: Accessible.ListItem
                Accessible.name: name
                Accessible.description: qsTr("row %1 of %2").arg(index + 1).arg(list.count)

                ColumnLayout {
                    id: column
                    anchors.fill: parent
                    anchors.margins: 16
                    spacing: 8
                    RowLayout {
                        Layout.fillWidth: true
                        spacing: 8
                        AppIcon { symbol: "rectangle.stack" }
                        AppText {
                            Layout.fillWidth: true
                            text: qsTr("%1  ·  %2").arg(space.name).arg(Format.counted(space.count, qsTr("file"), qsTr("files")))
                            isStrong: true
                        }
                        ActionButton {
                            visible: App.selection.selectedIDs.length > 0
                            text: qsTr("Add %1").arg(Format.counted(App.selection.selectedIDs.length, qsTr("file"), qsTr("files")))
                            onClicked: App.spaces.addToSpace(space.id, App.selection.selectedIDs)
                        }
                        IconButton {
                            symbol: "trash"
                            label: qsTr("Remove the space %1").arg(space.name)
                            onClicked: App.spaces.removeSpace(space.id)
                        }
                    }
                    Repeater {
                        model: space.paths
                        RowLayout {
                            required property string modelData
                            Layout.fillWidth: true
                            spacing: 8
                            AppText {
                                Layout.fillWidth: true
                                Layout.preferredWidth: 1
                                text: Format.fileName(modelData)
                                elide: Text.ElideMiddle
                            }
                            AppText {
                                Layout.fillWidth: true
                                Layout.preferredWidth: 1
                                text: Format.path(Format.folder(modelData))
                                elide: Text.ElideMiddle
                                isSecondary: true
                                font.pixelSize: Theme.caption
                            }
                            IconButton {
                                symbol: "arrow.up.right.square"
                                label: qsTr("Open %1").arg(Format.fileName(modelData))
                                onClicked: App.open(modelData)
                            }
                            IconButton {
                                symbol: "xmark"
                                label: qsTr("Take %1 out").arg(Format.fileName(modelData))
                                onClicked: App.spaces.removeFromSpace(space.id, [modelData])
                            }
                        }
                    }
                }
            }
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: list.count === 0
            EmptyState {
                anchors.centerIn: parent
                symbol: "rectangle.stack"
                title: qsTr("No spaces yet")
                sentence: qsTr("Choose files in Files or Search, then give their space a name here.")
            }
        }
    }
}
