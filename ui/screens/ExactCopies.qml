import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// Files that are byte for byte the same. In every group one copy stays.
FocusScope {
    id: screen

    readonly property string summary: App.duplicates.groupCount > 0
        ? qsTr("%1, %2 reclaimable").arg(Format.counted(App.duplicates.groupCount, qsTr("group"), qsTr("groups")))
            .arg(Format.size(App.duplicates.reclaimableBytes))
        : ""
    readonly property var groups: App.duplicates.duplicates
    readonly property bool isBusy: App.duplicates.isFindingDuplicates

    ColumnLayout {
        anchors.fill: parent
        spacing: 16

        GridLayout {
            Layout.fillWidth: true
            visible: screen.groups.count > 0 && !screen.isBusy
            readonly property bool isNarrow: screen.width < 740
            columns: isNarrow ? 1 : 2
            columnSpacing: 8
            rowSpacing: 8
            SettingsChoice {
                Layout.fillWidth: true
                label: qsTr("Keep of each group")
                labelWidth: 0
                options: [
                    { value: "newest", text: qsTr("The newest") },
                    { value: "oldest", text: qsTr("The oldest") },
                    { value: "shortest-path", text: qsTr("The shortest path") }
                ]
                current: App.duplicates.keep
                onChosen: value => App.duplicates.keep = value
            }
            RowLayout {
                Layout.alignment: Qt.AlignRight
                spacing: 8
                ActionButton {
                    text: qsTr("Search again")
                    symbol: "arrow.clockwise"
                    onClicked: App.duplicates.findDuplicates()
                }
                ActionButton {
                    text: qsTr("Review all…")
                    isPrimary: true
                    onClicked: App.proposeDuplicateTrash("")
                }
            }
        }

        GradualList {
            id: list
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: count > 0 && !screen.isBusy
            focus: true
            clip: true
            spacing: 12
            model: screen.groups
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar {}
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Groups of the same files")
            delegate: ListRow {
                id: group

                required property int index
                required property string digest
                required property var files
                required property int count
                required property var reclaimableBytes
                readonly property string heading: qsTr("%1, %2 reclaimable")
                    .arg(Format.counted(count, qsTr("copy"), qsTr("copies"))).arg(Format.size(reclaimableBytes))

                height: column.implicitHeight + 32
                Accessible.name: heading
                Accessible.description: qsTr("row %1 of %2").arg(index + 1).arg(App.duplicates.groupCount)

                ColumnLayout {
                    id: column
                    anchors.fill: parent
                    anchors.margins: 16
                    spacing: 8
                    RowLayout {
                        Layout.fillWidth: true
                        AppText {
                            Layout.fillWidth: true
                            text: group.heading
                            isStrong: true
                        }
                        ActionButton {
                            text: qsTr("Review…")
                            Accessible.name: qsTr("Review %1").arg(group.heading)
                            onClicked: App.proposeDuplicateTrash(group.digest)
                        }
                    }
                    Column {
                        id: copies
                        readonly property int lineHeight: 24
                        Layout.fillWidth: true
                        Layout.preferredHeight: group.files.length * (lineHeight + spacing) - spacing
                        spacing: 8
                        Repeater {
                            model: GradualModel {
                                model: group.files
                                delegate: RowLayout {
                                    required property int index
                                    required property var modelData
                                    width: copies.width
                                    height: copies.lineHeight
                                    spacing: 12
                                    AppIcon { symbol: modelData.symbol }
                                    AppText {
                                        Layout.fillWidth: true
                                        text: Format.path(modelData.path)
                                        elide: Text.ElideMiddle
                                    }
                                    Chip {
                                        visible: index === 0
                                        text: qsTr("Keep")
                                        symbol: "checkmark"
                                    }
                                    AppText {
                                        Layout.preferredWidth: Math.max(96, implicitWidth)
                                        text: Format.date(modelData.modifiedAt)
                                        horizontalAlignment: Text.AlignRight
                                        isSecondary: true
                                    }
                                }
                            }
                        }
                    }
                    AppText {
                        visible: group.count > group.files.length
                        text: qsTr("and %1 more").arg(Format.count(group.count - group.files.length))
                        isSecondary: true
                    }
                }
            }
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: list.count === 0 || screen.isBusy
            EmptyState {
                anchors.centerIn: parent
                visible: !screen.isBusy
                symbol: App.duplicates.hasSearched ? "checkmark.circle" : "square.on.square"
                title: App.duplicates.hasSearched ? qsTr("No duplicates") : qsTr("Find exact duplicates")
                sentence: App.duplicates.hasSearched
                    ? qsTr("No two of your indexed files are the same.")
                    : qsTr("Files of the same size are compared byte for byte. Nothing is changed.")
                action: App.duplicates.hasSearched ? qsTr("Search again") : qsTr("Find duplicates")
                onActed: App.duplicates.findDuplicates()
            }
            ColumnLayout {
                anchors.centerIn: parent
                width: 360
                visible: screen.isBusy
                spacing: 12
                AppText {
                    Layout.alignment: Qt.AlignHCenter
                    text: qsTr("Comparing %1 of %2 files").arg(Format.count(App.duplicates.filesDone))
                        .arg(Format.count(App.duplicates.filesToRead))
                }
                ProgressLine {
                    Layout.fillWidth: true
                    label: qsTr("Files compared")
                    value: App.duplicates.filesToRead > 0
                        ? App.duplicates.filesDone / App.duplicates.filesToRead : 0
                }
                ActionButton {
                    Layout.alignment: Qt.AlignHCenter
                    text: qsTr("Cancel")
                    onClicked: App.duplicates.cancel()
                }
            }
        }
    }
}
