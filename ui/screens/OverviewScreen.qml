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
                Repeater {
                    model: [
                        { symbol: "doc", value: screen.total > 0 ? Format.count(screen.total) : "…", text: qsTr("files indexed"), section: "files" },
                        { symbol: "square.on.square",
                          value: App.duplicates.hasSearched ? Format.size(App.duplicates.reclaimableBytes) : qsTr("Find"),
                          text: App.duplicates.hasSearched ? qsTr("in duplicates") : qsTr("exact duplicates"), section: "duplicates" },
                        { symbol: "externaldrive",
                          value: Cleanup.hasReport ? Format.size(Cleanup.candidates.bytes) : qsTr("Look"),
                          text: Cleanup.hasReport ? qsTr("to review") : qsTr("what takes up space"), section: "storage" },
                        { symbol: "clock", value: Format.count(App.plans.actions.count), text: qsTr("changes made"), section: "activity" }
                    ]
                    OverviewCard {
                        required property var modelData
                        Layout.fillWidth: true
                        Layout.preferredWidth: 1
                        symbol: modelData.symbol
                        value: modelData.value
                        text: modelData.text
                        onClicked: App.section = modelData.section
                    }
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
                        model: screen.summary.kinds || []
                        Pressable {
                            id: kind
                            required property var modelData
                            required property int index
                            Layout.fillWidth: true
                            implicitHeight: Theme.rowHeight
                            Accessible.name: modelData.title + ", " + Format.count(modelData.count)
                            onClicked: {
                                App.library.libraryKind = modelData.kind
                                App.section = "files"
                            }
                            background: Rectangle {
                                radius: Theme.rowRadius
                                color: kind.hovered ? Theme.hover : "transparent"
                                FocusRing { control: kind }
                            }
                            contentItem: RowLayout {
                                spacing: 12
                                AppIcon { symbol: kind.modelData.symbol }
                                AppText {
                                    Layout.preferredWidth: 110
                                    text: kind.modelData.title
                                    Accessible.ignored: true
                                }
                                Item {
                                    Layout.fillWidth: true
                                    implicitHeight: 10
                                    Rectangle {
                                        anchors.left: parent.left
                                        width: Math.max(4, parent.width * kind.modelData.count / screen.total)
                                        height: parent.height
                                        radius: 5
                                        color: Theme.chart[kind.index % Theme.chart.length]
                                    }
                                }
                                AppText {
                                    Layout.preferredWidth: 80
                                    text: Format.count(kind.modelData.count)
                                    horizontalAlignment: Text.AlignRight
                                    isSecondary: true
                                    Accessible.ignored: true
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
                        model: App.library.recentFiles
                        Pressable {
                            id: recent
                            required property string path
                            required property string name
                            required property string folder
                            required property string symbol
                            required property var modifiedAt
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
