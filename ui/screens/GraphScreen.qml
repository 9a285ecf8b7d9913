import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// What one file is connected with, as a drawing and as a list; both show the same.
FocusScope {
    id: screen

    readonly property string title: qsTr("Graph")
    readonly property var kinds: [
        { kind: "duplicate", text: qsTr("Same content") },
        { kind: "project", text: qsTr("Same space") },
        { kind: "words", text: qsTr("Words in common") },
        { kind: "origin", text: qsTr("Same origin") },
        { kind: "folder", text: qsTr("Same folder") }
    ]
    property string currentPath: ""

    function colorOf(kind) {
        const at = kinds.findIndex(known => known.kind === kind)
        return at < 0 ? Theme.accent : Theme.chart[at]
    }
    function begin() {
        const chosen = App.selection.selectedIDs
        if (chosen.length > 0 && chosen[0] !== Graph.center)
            Graph.show(chosen[0])
        else if (Graph.center !== "")
            Graph.refresh()
        else
            Graph.showAny()
    }

    Component.onCompleted: begin()
    Connections {
        target: App
        function onLibraryFilesChanged() { Graph.refresh() }
    }
    Connections {
        target: Screens
        function onIndexChanged() { screen.begin() }
    }
    Connections {
        target: Graph
        function onChanged() { if (Graph.nodes.rowOf(screen.currentPath) < 0) screen.currentPath = "" }
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        spacing: 16

        ScreenHeader {
            Layout.fillWidth: true
            title: screen.title
            subtitle: Graph.center === "" ? qsTr("What your files have in common")
                : qsTr("%1 around %2").arg(Format.counted(Math.max(0, list.count - 1), qsTr("file"), qsTr("files"))).arg(Graph.centerName)
        }
        Flow {
            Layout.fillWidth: true
            spacing: 16
            visible: list.count > 0
            FilterButton {
                text: qsTr("Near")
                isCurrent: Graph.depth === 1
                onClicked: Graph.depth = 1
            }
            FilterButton {
                text: qsTr("Two steps")
                isCurrent: Graph.depth === 2
                onClicked: Graph.depth = 2
            }
            Repeater {
                model: screen.kinds
                Row {
                    required property var modelData
                    height: 28
                    spacing: 6
                    Rectangle {
                        anchors.verticalCenter: parent.verticalCenter
                        width: 10
                        height: 10
                        radius: 5
                        color: screen.colorOf(modelData.kind)
                    }
                    AppText {
                        anchors.verticalCenter: parent.verticalCenter
                        text: modelData.text
                        isSecondary: true
                        font.pixelSize: Theme.caption
                    }
                }
            }
        }
        Banner {
            Layout.fillWidth: true
            visible: Graph.error !== ""
            text: Graph.error
            action: qsTr("Try again")
            onActed: Graph.refresh()
            onDismissed: Graph.refresh()
        }
        Panes {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: list.count > 0

            Card {
                SplitView.fillWidth: true
                SplitView.minimumWidth: 300
                clip: true
                GraphDrawing {
                    anchors.fill: parent
                    anchors.margins: 12
                    model: Graph.nodes
                    currentPath: screen.currentPath
                    kinds: screen.kinds.map(known => known.kind)
                    colorOf: screen.colorOf
                    onChosen: path => {
                        screen.currentPath = path
                        list.currentIndex = Graph.nodes.rowOf(path)
                    }
                    onActivated: path => Graph.show(path)
                }
                AppText {
                    anchors.centerIn: parent
                    anchors.verticalCenterOffset: 60
                    visible: list.count === 1 && !Graph.isLoading
                    text: qsTr("No other file is connected with this one.")
                    isSecondary: true
                }
            }
            Card {
                SplitView.preferredWidth: screen.width > 900 ? 330 : 280
                SplitView.minimumWidth: 270
                GradualList {
                    id: list
                    anchors.fill: parent
                    anchors.margins: 8
                    anchors.bottomMargin: actions.height + 20
                    focus: true
                    activeFocusOnTab: true
                    clip: true
                    model: Graph.nodes
                    boundsBehavior: Flickable.StopAtBounds
                    ScrollBar.vertical: ScrollBar {}
                    Accessible.role: Accessible.List
                    Accessible.name: qsTr("Connected files")
                    onCurrentItemChanged: if (currentItem && activeFocus) screen.currentPath = currentItem.path
                    Keys.onReturnPressed: event => {
                        if (event.modifiers & Qt.ControlModifier)
                            App.reveal(screen.currentPath)
                        else if (screen.currentPath !== "")
                            Graph.show(screen.currentPath)
                    }
                    delegate: ConnectionRow {
                        required property int index
                        width: ListView.view.width
                        isCurrent: path === screen.currentPath
                        isFocused: ListView.isCurrentItem && list.activeFocus
                        place: qsTr("row %1 of %2").arg(index + 1).arg(list.count)
                        color: screen.colorOf(kind)
                        onClicked: {
                            list.forceActiveFocus()
                            list.currentIndex = index
                            screen.currentPath = path
                        }
                        onDoubleClicked: Graph.show(path)
                    }
                }
                RowLayout {
                    id: actions
                    anchors.bottom: parent.bottom
                    anchors.left: parent.left
                    anchors.right: parent.right
                    anchors.margins: 12
                    spacing: 8
                    ActionButton {
                        Layout.fillWidth: true
                        text: qsTr("Look around here")
                        symbol: "target"
                        enabled: screen.currentPath !== "" && screen.currentPath !== Graph.center
                        onClicked: Graph.show(screen.currentPath)
                    }
                    IconButton {
                        symbol: "arrow.up.right.square"
                        label: qsTr("Open")
                        enabled: screen.currentPath !== ""
                        onClicked: App.open(screen.currentPath)
                    }
                    IconButton {
                        symbol: "folder"
                        label: qsTr("Show in folder")
                        enabled: screen.currentPath !== ""
                        onClicked: App.reveal(screen.currentPath)
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
                visible: App.isLoaded && !Graph.isLoading
                symbol: "point.3.connected.trianglepath.dotted"
                title: qsTr("No file in the middle")
                sentence: qsTr("Choose a file in Files or Search, then come back to see what it is connected with.")
                action: qsTr("Go to Files")
                onActed: App.section = "files"
            }
            Waiting {
                anchors.centerIn: parent
                isBusy: !App.isLoaded || Graph.isLoading
                text: qsTr("Looking for connections…")
            }
        }
    }
}
