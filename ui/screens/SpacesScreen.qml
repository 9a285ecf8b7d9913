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
    readonly property int row: App.spaces.spacesRevision >= 0 ? spaces.rowOf(SpaceFiles.space) : -1
    readonly property string spaceName: row >= 0 && App.spaces.spacesRevision >= 0 ? spaces.value(row, "name") : ""
    readonly property var chosen: App.selection.selectedIDs
    property int chosenOutside: 0

    function counted(files) {
        return Format.counted(files, qsTr("file"), qsTr("files"))
    }
    function create() {
        const id = App.spaces.createSpace(field.text, chosen)
        if (id === "")
            return
        field.clear()
        SpaceFiles.space = id
    }
    function chooseAnother() {
        if (row < 0 && spaces.count > 0)
            SpaceFiles.space = spaces.value(0, "id")
    }
    function rename() {
        newName.text = spaceName
        newName.visible = true
        newName.forceActiveFocus()
        newName.selectAll()
    }
    function endRenaming(name) {
        pencil.forceActiveFocus()
        App.spaces.renameSpace(SpaceFiles.space, name)
    }

    function countChosen() {
        chosenOutside = SpaceFiles.countOutside(chosen)
    }

    Component.onCompleted: {
        chooseAnother()
        countChosen()
    }
    onChosenChanged: countChosen()
    Connections {
        target: App.spaces
        function onChanged() { Qt.callLater(screen.chooseAnother) }
    }
    Connections {
        target: SpaceFiles
        function onChanged() { screen.countChosen() }
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
                text: App.selection.count > 0 ? qsTr("Create with %1").arg(screen.counted(App.selection.count))
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
        Panes {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: list.count > 0

            Card {
                SplitView.preferredWidth: 236
                SplitView.minimumWidth: 180
                GradualList {
                    id: list
                    anchors.fill: parent
                    anchors.margins: 8
                    clip: true
                    spacing: 2
                    model: screen.spaces
                    boundsBehavior: Flickable.StopAtBounds
                    ScrollBar.vertical: ScrollBar {}
                    Accessible.role: Accessible.List
                    Accessible.name: screen.title
                    delegate: GroupRow {
                        required property int index
                        required property string id
                        required property string name
                        required property int count
                        width: ListView.view.width
                        text: name
                        symbol: "rectangle.stack"
                        detail: Format.count(count)
                        isCurrent: SpaceFiles.space === id
                        isEntry: ListView.isCurrentItem
                        Accessible.description: qsTr("%1, row %2 of %3").arg(screen.counted(count))
                            .arg(index + 1).arg(list.count)
                        onClicked: {
                            list.currentIndex = index
                            SpaceFiles.space = id
                        }
                    }
                }
            }
            Card {
                SplitView.fillWidth: true
                SplitView.minimumWidth: 320
                ColumnLayout {
                    anchors.fill: parent
                    anchors.margins: 8
                    spacing: 8
                    RowLayout {
                        Layout.leftMargin: 12
                        spacing: 8
                        AppText {
                            Layout.fillWidth: true
                            visible: !newName.visible
                            text: screen.spaceName
                            elide: Text.ElideRight
                            isStrong: true
                            Accessible.role: Accessible.Heading
                        }
                        InputField {
                            id: newName
                            Layout.fillWidth: true
                            visible: false
                            label: qsTr("New name of the space")
                            onAccepted: screen.endRenaming(text)
                            onActiveFocusChanged: if (!activeFocus) visible = false
                            Keys.onEscapePressed: screen.endRenaming("")
                        }
                        ActionButton {
                            visible: screen.chosenOutside > 0
                            text: qsTr("Add %1").arg(screen.counted(screen.chosenOutside))
                            onClicked: App.spaces.addToSpace(SpaceFiles.space, screen.chosen)
                        }
                        ActionButton {
                            visible: screen.chosen.length > screen.chosenOutside
                            text: qsTr("Take %1 out").arg(screen.counted(screen.chosen.length - screen.chosenOutside))
                            onClicked: App.spaces.removeFromSpace(SpaceFiles.space, screen.chosen)
                        }
                        IconButton {
                            id: pencil
                            symbol: "pencil"
                            label: qsTr("Rename the space %1").arg(screen.spaceName)
                            onClicked: screen.rename()
                        }
                        IconButton {
                            symbol: "trash"
                            label: qsTr("Remove the space %1").arg(screen.spaceName)
                            onClicked: App.spaces.removeSpace(SpaceFiles.space)
                        }
                    }
                    Banner {
                        Layout.fillWidth: true
                        visible: SpaceFiles.absent.length > 0
                        isError: false
                        isDismissable: false
                        text: qsTr("%1 of this space cannot be shown: moved by another program, or in a folder that is not connected.")
                            .arg(screen.counted(SpaceFiles.absent.length))
                        action: qsTr("Take %1 out").arg(screen.counted(SpaceFiles.absent.length))
                        onActed: App.spaces.removeFromSpace(SpaceFiles.space, SpaceFiles.absent)
                    }
                    FileTable {
                        id: table
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        visible: count > 0
                        files: SpaceFiles.files
                    }
                    Item {
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        visible: table.count === 0
                        EmptyState {
                            anchors.centerIn: parent
                            visible: SpaceFiles.hasLoaded && SpaceFiles.absent.length === 0
                            symbol: "rectangle.stack"
                            title: qsTr("No files in this space yet")
                            sentence: qsTr("Choose files in Files or Search, then add them here.")
                        }
                    }
                }
            }
            DetailsPane {
                hasRoom: screen.width > 900
                beside: table
                revision: table.count
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
