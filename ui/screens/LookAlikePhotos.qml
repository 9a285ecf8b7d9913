import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// Photos that look alike, in groups; marked ones go through the review like every change.
FocusScope {
    id: screen

    readonly property string summary: LookAlikes.status
    property string folder: ""
    readonly property int tileWidth: 208
    readonly property int tileHeight: 292

    function isMarked(path) {
        return LookAlikes.selectedCount > 0 && LookAlikes.isSelected(path)
    }
    function check() {
        Screens.findLookAlikes(folder)
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 16

        Flow {
            Layout.fillWidth: true
            spacing: 8
            visible: App.folders.roots.count > 1 && !LookAlikes.isScanning
            FilterButton {
                text: qsTr("All folders")
                isCurrent: screen.folder === ""
                onClicked: screen.folder = ""
            }
            Repeater {
                model: App.folders.roots
                FilterButton {
                    required property string path
                    text: Format.fileName(path)
                    symbol: "folder"
                    isCurrent: screen.folder === path
                    Accessible.description: path
                    onClicked: screen.folder = path
                }
            }
        }
        AppText {
            Layout.fillWidth: true
            visible: LookAlikes.notice !== "" && groups.count > 0
            text: LookAlikes.notice
            color: Theme.warning
            wrapMode: Text.Wrap
        }
        RowLayout {
            Layout.fillWidth: true
            visible: groups.count > 0 && !LookAlikes.isScanning
            spacing: 8
            AppText {
                Layout.fillWidth: true
                text: LookAlikes.caution
                isSecondary: true
                wrapMode: Text.Wrap
            }
            ActionButton {
                text: qsTr("Compare again")
                symbol: "arrow.clockwise"
                onClicked: screen.check()
            }
            ActionButton {
                objectName: "look-alikes-review"
                text: LookAlikes.selectedCount === 0 ? qsTr("Review…")
                    : qsTr("Review %1…").arg(Format.counted(LookAlikes.selectedCount, qsTr("photo"), qsTr("photos")))
                isPrimary: true
                enabled: LookAlikes.selectedCount > 0
                onClicked: App.plans.proposePhotoTrash(LookAlikes.selectedIDs)
            }
        }
        GradualList {
            id: groups
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: count > 0 && !LookAlikes.isScanning
            focus: true
            clip: true
            spacing: 12
            rowHeight: 420
            model: LookAlikes.groups
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar {}
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Groups of look-alike photos")
            delegate: ListRow {
                id: group

                required property int index
                required property string id
                required property var files
                required property int count
                required property bool hasKeeper
                required property string warning
                required property var potentialBytes
                property bool showsAll: false
                readonly property var shown: showsAll && files.length < count ? LookAlikes.filesOf(id) : files
                readonly property bool isAllMarked: LookAlikes.selectedCount >= count && LookAlikes.isAllSelected(id)
                readonly property string heading: qsTr("%1, up to %2 reclaimable")
                    .arg(Format.counted(count, qsTr("photo"), qsTr("photos"))).arg(Format.size(potentialBytes))

                height: column.implicitHeight + 32
                Accessible.name: heading
                Accessible.description: qsTr("row %1 of %2").arg(index + 1).arg(groups.count)

                ColumnLayout {
                    id: column
                    anchors.fill: parent
                    anchors.margins: 16
                    spacing: 12
                    RowLayout {
                        Layout.fillWidth: true
                        spacing: 8
                        ColumnLayout {
                            Layout.fillWidth: true
                            spacing: 0
                            AppText {
                                Layout.fillWidth: true
                                text: group.heading
                                isStrong: true
                                wrapMode: Text.Wrap
                            }
                            AppText {
                                Layout.fillWidth: true
                                visible: group.isAllMarked
                                text: qsTr("Every photo of this group is marked.")
                                color: Theme.warning
                                wrapMode: Text.Wrap
                            }
                        }
                        ActionButton {
                            visible: group.hasKeeper
                            text: qsTr("Mark all but the kept one")
                            Accessible.description: group.heading
                            onClicked: LookAlikes.selectAllButKeeper(group.id)
                        }
                        ActionButton {
                            text: qsTr("Compare…")
                            symbol: "rectangle.split.2x1"
                            Accessible.description: group.heading
                            onClicked: comparison.show(LookAlikes.filesOf(group.id), group.hasKeeper)
                        }
                    }
                    Banner {
                        Layout.fillWidth: true
                        visible: text !== ""
                        text: group.warning
                        isError: false
                        isDismissable: false
                    }
                    Flow {
                        readonly property int inARow: Math.max(1, Math.floor((width + spacing) / (screen.tileWidth + spacing)))
                        Layout.fillWidth: true
                        Layout.preferredHeight: Math.ceil(group.shown.length / inARow) * (screen.tileHeight + spacing) - spacing
                        spacing: 12
                        Repeater {
                            model: GradualModel {
                                model: group.shown
                                delegate: PhotoTile {
                                    required property int index
                                    required property var modelData
                                    width: screen.tileWidth
                                    height: screen.tileHeight
                                    photo: modelData
                                    isKeeper: group.hasKeeper && index === 0
                                    isMarked: screen.isMarked(modelData.path)
                                    onClicked: LookAlikes.toggle(modelData.path)
                                }
                            }
                        }
                    }
                    ActionButton {
                        visible: group.shown.length < group.count
                        text: qsTr("Show all %1").arg(Format.counted(group.count, qsTr("photo"), qsTr("photos")))
                        Accessible.description: group.heading
                        onClicked: group.showsAll = true
                    }
                }
            }
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: groups.count === 0 || LookAlikes.isScanning
            EmptyState {
                anchors.centerIn: parent
                visible: !LookAlikes.isScanning
                symbol: LookAlikes.hasReport ? "checkmark.circle" : "photo"
                title: LookAlikes.hasReport ? LookAlikes.notice : qsTr("Find look-alike photos")
                sentence: LookAlikes.hasReport ? LookAlikes.status
                    : LookAlikes.status !== "" ? LookAlikes.status
                    : qsTr("Your newest photos are compared with each other on this machine. Nothing is changed.")
                action: LookAlikes.hasReport ? qsTr("Compare again") : qsTr("Compare photos")
                onActed: screen.check()
            }
            ColumnLayout {
                anchors.centerIn: parent
                visible: LookAlikes.isScanning
                spacing: 12
                BusyIndicator {
                    Layout.alignment: Qt.AlignHCenter
                    running: LookAlikes.isScanning
                    Accessible.ignored: true
                }
                AppText {
                    Layout.alignment: Qt.AlignHCenter
                    text: LookAlikes.status
                    isSecondary: true
                }
                ActionButton {
                    Layout.alignment: Qt.AlignHCenter
                    text: qsTr("Cancel")
                    onClicked: LookAlikes.cancel()
                }
            }
        }
    }

    ComparisonSheet { id: comparison }
}
