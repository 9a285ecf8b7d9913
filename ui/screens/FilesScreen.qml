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
    readonly property var kinds: summary.kinds || []
    readonly property int total: summary.total || 0 // of a large library counted after the first rows
    readonly property bool hasFiles: total > 0 || App.library.files.count > 0

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        spacing: 16

        ScreenHeader {
            Layout.fillWidth: true
            title: screen.title
            subtitle: {
                const shown = App.library.files.count
                if (!screen.hasFiles)
                    return ""
                if (screen.total === 0)
                    return qsTr("Showing %1").arg(Format.counted(shown, qsTr("file"), qsTr("files")))
                const all = Format.counted(screen.total, qsTr("file"), qsTr("files"))
                return shown === screen.total ? all : qsTr("Showing %1 of %2").arg(Format.count(shown)).arg(all)
            }
            ActionButton {
                visible: screen.hasFiles
                text: qsTr("Add folder")
                symbol: "folder.badge.plus"
                isPrimary: true
                onClicked: App.folders.presentFolderPicker()
            }
        }

        Flow {
            Layout.fillWidth: true
            spacing: 8
            visible: screen.hasFiles
            FilterButton {
                text: qsTr("All")
                isCurrent: App.library.libraryKind === ""
                onClicked: App.library.libraryKind = ""
            }
            Repeater {
                model: GradualModel {
                    model: screen.kinds.length // so that other counts do not make them anew
                    delegate: FilterButton {
                        required property int index
                        readonly property var kind: screen.kinds[index] || { title: "", symbol: "", count: 0 }
                        text: kind.title + "  " + Format.count(kind.count)
                        symbol: kind.symbol
                        isCurrent: App.library.libraryKind === kind.kind
                        onClicked: App.library.libraryKind = kind.kind
                    }
                }
            }
        }

        Panes {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: screen.hasFiles

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
            visible: !screen.hasFiles && App.library.filesRevision > 0
        }
    }
}
