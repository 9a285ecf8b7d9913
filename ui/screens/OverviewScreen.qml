import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// The state of the library at a glance; every card leads somewhere.
FocusScope {
    id: screen

    readonly property string title: qsTr("Overview")
    readonly property var summary: App.library.librarySummary
    readonly property var kinds: summary.kinds || []
    readonly property int total: summary.total || 0 // of a large library counted after the first files
    readonly property bool hasFiles: total > 0 || App.library.files.count > 0

    Welcome {
        anchors.fill: parent
        anchors.margins: 24
        visible: !screen.hasFiles && App.library.filesRevision > 0
    }
    Flickable {
        anchors.fill: parent
        visible: screen.hasFiles
        contentHeight: column.implicitHeight + 48
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        ScrollBar.vertical: ScrollBar {}

        ColumnLayout {
            id: column
            x: 24
            y: 24
            width: parent.width - 48
            spacing: 16

            ScreenHeader {
                Layout.fillWidth: true
                title: screen.title
                subtitle: App.notices.statusMessage
                ActionButton {
                    text: App.scan.isPaused ? qsTr("Resume indexing") : qsTr("Scan again")
                    symbol: App.scan.isPaused ? "play" : "arrow.clockwise"
                    enabled: !App.scan.isIndexing
                    isPrimary: true
                    onClicked: App.scan.isPaused ? App.scan.pauseIndexing() : App.scan.rescan()
                }
            }
            Statement {
                visible: text !== ""
                symbol: "exclamationmark.triangle"
                text: App.folders.freshnessNotice
            }
            GridLayout {
                Layout.fillWidth: true
                columns: screen.width > 900 ? 4 : 2
                columnSpacing: 12
                rowSpacing: 12
                OverviewCard {
                    symbol: "doc"
                    value: screen.total > 0 ? Format.count(screen.total) : "…"
                    text: qsTr("files indexed")
                    onClicked: App.section = "files"
                }
                OverviewCard {
                    symbol: "square.on.square"
                    value: App.duplicates.hasSearched ? Format.size(App.duplicates.reclaimableBytes) : qsTr("Find")
                    text: App.duplicates.hasSearched ? qsTr("in duplicates") : qsTr("exact duplicates")
                    onClicked: App.section = "duplicates"
                }
                OverviewCard {
                    symbol: "externaldrive"
                    value: Cleanup.hasReport ? Format.size(Cleanup.candidates.bytes) : qsTr("Look")
                    text: Cleanup.hasReport ? qsTr("to review") : qsTr("what takes up space")
                    onClicked: App.section = "storage"
                }
                OverviewCard {
                    symbol: "clock"
                    value: Format.count(App.plans.actions.count)
                    text: qsTr("changes made")
                    onClicked: App.section = "activity"
                }
            }
            GridLayout {
                Layout.fillWidth: true
                columns: screen.width > 900 ? 2 : 1
                columnSpacing: 12
                rowSpacing: 12
                SettingsGroup {
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    Layout.fillHeight: true
                    title: qsTr("By kind")
                    Repeater {
                        model: GradualModel {
                            model: screen.kinds.length // so that other counts do not make them anew
                            delegate: Pressable {
                                id: row
                                required property int index
                                readonly property var kind: screen.kinds[index] || { title: "", symbol: "", count: 0 }
                                Layout.fillWidth: true
                                implicitHeight: Theme.rowHeight
                                Accessible.name: kind.title + ", " + Format.count(kind.count)
                                onClicked: {
                                    App.library.libraryKind = kind.kind
                                    App.section = "files"
                                }
                                background: Rectangle {
                                    radius: Theme.rowRadius
                                    color: row.hovered ? Theme.hover : "transparent"
                                    FocusRing { control: row }
                                }
                                contentItem: RowLayout {
                                    spacing: 12
                                    AppIcon { symbol: row.kind.symbol }
                                    AppText {
                                        Layout.preferredWidth: 110
                                        text: row.kind.title
                                        Accessible.ignored: true
                                    }
                                    Item {
                                        Layout.fillWidth: true
                                        implicitHeight: 10
                                        Rectangle {
                                            anchors.left: parent.left
                                            width: Math.max(4, parent.width * row.kind.count / screen.total)
                                            height: parent.height
                                            radius: 5
                                            color: Theme.chart[row.index % Theme.chart.length]
                                        }
                                    }
                                    AppText {
                                        Layout.preferredWidth: 80
                                        text: Format.count(row.kind.count)
                                        horizontalAlignment: Text.AlignRight
                                        isSecondary: true
                                        Accessible.ignored: true
                                    }
                                }
                            }
                        }
                    }
                }
                SettingsGroup {
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    Layout.fillHeight: true
                    title: qsTr("Recent files")
                    Repeater {
                        model: GradualModel {
                            model: App.library.recentFiles
                            delegate: Pressable {
                                id: recent
                                required property string path
                                required property string name
                                required property string folder
                                required property string symbol
                                required property double modifiedAt
                                Layout.fillWidth: true
                                implicitHeight: Theme.rowHeight + 8
                                Accessible.name: name
                                Accessible.description: qsTr("Open, in %1, modified %2").arg(Format.path(folder)).arg(Format.date(modifiedAt))
                                onClicked: App.open(path)
                                background: Rectangle {
                                    radius: Theme.rowRadius
                                    color: recent.hovered ? Theme.hover : "transparent"
                                    FocusRing { control: recent }
                                }
                                contentItem: RowLayout {
                                    spacing: 12
                                    AppIcon { symbol: recent.symbol }
                                    ColumnLayout {
                                        Layout.fillWidth: true
                                        spacing: 0
                                        AppText {
                                            Layout.fillWidth: true
                                            text: recent.name
                                            elide: Text.ElideMiddle
                                            Accessible.ignored: true
                                        }
                                        AppText {
                                            Layout.fillWidth: true
                                            text: Format.path(recent.folder)
                                            elide: Text.ElideMiddle
                                            isSecondary: true
                                            font.pixelSize: Theme.caption
                                            Accessible.ignored: true
                                        }
                                    }
                                    AppText {
                                        text: Format.date(recent.modifiedAt)
                                        isSecondary: true
                                        Accessible.ignored: true
                                    }
                                }
                            }
                        }
                    }
                }
            }
        }
    }
}
