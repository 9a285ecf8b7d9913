import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// The library: everything indexed, newest first, filtered by kind and preset.
FocusScope {
    id: screen

    readonly property string title: qsTr("Files")
    readonly property var summary: App.library.librarySummary
    readonly property int total: summary.total || 0

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        spacing: 16

        ScreenHeader {
            Layout.fillWidth: true
            title: screen.title
            subtitle: screen.total > 0
                ? App.library.files.count === screen.total ? Format.counted(screen.total, qsTr("file"), qsTr("files"))
                : qsTr("Showing %1 of %2").arg(Format.count(App.library.files.count))
                    .arg(Format.counted(screen.total, qsTr("file"), qsTr("files")))
                : ""
            ActionButton {
                visible: screen.total > 0
                text: qsTr("Add folder")
                symbol: "folder.badge.plus"
                isPrimary: true
                onClicked: App.folders.presentFolderPicker()
            }
        }

        Flow {
            Layout.fillWidth: true
            spacing: 8
            visible: screen.total > 0
            FilterButton {
                text: qsTr("All")
                isCurrent: App.library.libraryKind === ""
                onClicked: App.library.libraryKind = ""
            }
            Repeater {
                model: screen.summary.kinds || []
                FilterButton {
                    required property var modelData
                    text: modelData.title + "  " + Format.count(modelData.count)
                    symbol: modelData.symbol
                    isCurrent: App.library.libraryKind === modelData.kind
                    onClicked: App.library.libraryKind = modelData.kind
                }
            }
        }

        Panes {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: screen.total > 0

            Card {
                SplitView.fillWidth: true
                SplitView.minimumWidth: 380
                FileTable {
                    id: table
                    anchors.fill: parent
                    anchors.margins: 8
                    focus: true
                    files: App.library.files
                    sorter: App.library
                    hasMore: App.library.hasMoreFiles
                    onMoreWanted: App.library.loadMoreFiles()
                }
                EmptyState {
                    anchors.centerIn: parent
                    visible: App.library.files.count === 0
                    symbol: "magnifyingglass"
                    title: qsTr("No file of this kind")
                    action: qsTr("Show all")
                    onActed: App.library.libraryKind = ""
                }
            }
            DetailsPane {
                hasRoom: screen.width > 900
                beside: table
                revision: App.library.filesRevision
            }
        }

        Welcome {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: screen.total === 0
        }
    }
}
