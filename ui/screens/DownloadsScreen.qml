import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// What was downloaded, by the website or app it came from.
FocusScope {
    id: screen

    readonly property string title: qsTr("Downloads")
    readonly property bool isLatest: Downloads.selectedGroup === ""
    readonly property var shown: isLatest ? Downloads.latest : Downloads.files
    readonly property int groupRow: groups.count > 0 ? Downloads.groups.rowOf(Downloads.selectedGroup) : -1

    Component.onCompleted: Downloads.refresh()
    Connections {
        target: App
        function onLibraryFilesChanged() { Downloads.refresh() }
    }
    Connections {
        target: Screens
        function onIndexChanged() { Downloads.refresh() }
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        spacing: 16

        ScreenHeader {
            Layout.fillWidth: true
            title: screen.title
            subtitle: qsTr("Your downloads, together.")
            InputField {
                visible: groups.count > 0 && !screen.isLatest
                Layout.preferredWidth: 240
                label: qsTr("Filter by name")
                placeholderText: label
                symbol: "magnifyingglass"
                text: Downloads.nameFilter
                onTextEdited: Downloads.nameFilter = text
                Keys.onDownPressed: table.forceActiveFocus()
            }
        }
        Banner {
            Layout.fillWidth: true
            visible: Downloads.error !== ""
            text: Downloads.error
            action: qsTr("Try again")
            onActed: Downloads.refresh()
            onDismissed: Downloads.refresh()
        }

        Panes {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: groups.count > 0

            Card {
                SplitView.preferredWidth: 236
                SplitView.minimumWidth: 180
                ColumnLayout {
                    anchors.fill: parent
                    anchors.margins: 8
                    spacing: 2
                    GroupRow {
                        id: latest
                        Layout.fillWidth: true
                        isEntry: true
                        text: qsTr("Latest")
                        symbol: "clock"
                        detail: ""
                        isCurrent: screen.isLatest
                        onClicked: Downloads.selectedGroup = ""
                        Keys.onDownPressed: groups.enter(0)
                    }
                    GradualList {
                        id: groups
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        clip: true
                        spacing: 2
                        model: Downloads.groups
                        boundsBehavior: Flickable.StopAtBounds
                        ScrollBar.vertical: ScrollBar {}
                        Accessible.role: Accessible.List
                        Accessible.name: qsTr("Where downloads came from")
                        delegate: GroupRow {
                            required property int index
                            required property string id
                            required property string name
                            required property int count
                            required property var bytes
                            width: ListView.view.width
                            text: name
                            detail: Format.count(count)
                            isCurrent: Downloads.selectedGroup === id
                            isEntry: ListView.isCurrentItem
                            Accessible.description: qsTr("%1, %2, row %3 of %4")
                                .arg(Format.counted(count, qsTr("file"), qsTr("files"))).arg(Format.size(bytes))
                                .arg(index + 1).arg(groups.count)
                            onClicked: {
                                groups.currentIndex = index
                                Downloads.selectedGroup = id
                            }
                            Keys.onUpPressed: event => {
                                event.accepted = index === 0
                                if (event.accepted)
                                    latest.forceActiveFocus(Qt.BacktabFocusReason)
                            }
                        }
                    }
                }
            }
            Card {
                SplitView.fillWidth: true
                SplitView.minimumWidth: 320
                AppText {
                    id: heading
                    anchors.top: parent.top
                    anchors.left: parent.left
                    anchors.right: parent.right
                    anchors.margins: 20
                    anchors.topMargin: 16
                    text: screen.isLatest || screen.groupRow < 0 ? qsTr("Latest downloads")
                        : qsTr("%1  ·  %2").arg(Downloads.groups.value(screen.groupRow, "name"))
                            .arg(Format.size(Downloads.groups.value(screen.groupRow, "bytes")))
                    isStrong: true
                    Accessible.role: Accessible.Heading
                }
                FileTable {
                    id: table
                    anchors.fill: parent
                    anchors.margins: 8
                    anchors.topMargin: 44
                    focus: true
                    files: screen.shown
                    showsDownloadDate: true
                    hasMore: !screen.isLatest && Downloads.hasMoreFiles
                    onMoreWanted: Downloads.loadMoreFiles()
                }
                EmptyState {
                    anchors.centerIn: parent
                    visible: screen.shown.count === 0 && !screen.isLatest
                    symbol: "magnifyingglass"
                    title: qsTr("No download of this name")
                    action: qsTr("Show all")
                    onActed: Downloads.nameFilter = ""
                }
            }
            DetailsPane {
                hasRoom: screen.width > 900
                beside: table
                revision: screen.shown.count
            }
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: groups.count === 0
            EmptyState {
                anchors.centerIn: parent
                visible: !Downloads.isLoading || Downloads.hasLoaded
                symbol: "arrow.down.circle"
                title: qsTr("No downloads yet")
                sentence: qsTr("Files that a browser or mail program saved are grouped here by where they came from.")
                action: qsTr("Add folder")
                onActed: App.folders.presentFolderPicker()
            }
            Waiting {
                anchors.centerIn: parent
                isBusy: Downloads.isLoading && !Downloads.hasLoaded
                text: qsTr("Reading your downloads…")
            }
        }
    }
}
