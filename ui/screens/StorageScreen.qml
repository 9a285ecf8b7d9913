import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// What may be cleaned up, in six categories; only what was chosen and reviewed moves to the Trash.
FocusScope {
    id: screen

    readonly property string title: qsTr("Storage")
    readonly property var found: Cleanup.candidates
    readonly property var report: Cleanup.report
    property string page: "found"
    property string category: ""
    readonly property bool isEmpty: !Cleanup.hasReport && !Cleanup.isScanning

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        spacing: 16

        ScreenHeader {
            Layout.fillWidth: true
            title: screen.title
            subtitle: Cleanup.isScanning
                ? qsTr("Looking at %1").arg(Format.path(Cleanup.scannedPath)) : Cleanup.status
            ActionButton {
                visible: !screen.isEmpty
                text: Cleanup.isScanning ? qsTr("Stop") : qsTr("Scan again")
                symbol: Cleanup.isScanning ? "xmark" : "arrow.clockwise"
                enabled: Cleanup.isReady && !Cleanup.isExecuting
                onClicked: Cleanup.isScanning ? Cleanup.stopScan() : Cleanup.scan()
            }
            ActionButton {
                objectName: "cleanup-review"
                visible: screen.found.count > 0
                text: screen.found.selectedCount > 0
                    ? qsTr("Review %1, %2…").arg(Format.counted(screen.found.selectedCount, qsTr("item"), qsTr("items")))
                        .arg(Format.size(screen.found.selectedBytes))
                    : qsTr("Review…")
                isPrimary: true
                enabled: screen.found.selectedCount > 0 && !Cleanup.isPreparingReview && !Cleanup.isExecuting
                onClicked: Cleanup.review()
            }
        }
        Flow {
            Layout.fillWidth: true
            spacing: 8
            Repeater {
                model: [
                    { page: "found", text: qsTr("To review") },
                    { page: "history", text: qsTr("History") },
                    { page: "settings", text: qsTr("When and where") }
                ]
                FilterButton {
                    required property var modelData
                    text: modelData.text
                    isCurrent: screen.page === modelData.page
                    onClicked: screen.page = modelData.page
                }
            }
        }
        Banner {
            Layout.fillWidth: true
            visible: screen.page === "found" && Cleanup.hasReport && (screen.report.isPartial || false)
                && !partial.isDismissed
            id: partial
            property bool isDismissed: false
            isError: false
            text: qsTr("This is a part: %1").arg((screen.report.issues || [])[0]
                || qsTr("not everything could be looked at."))
            onDismissed: isDismissed = true
        }
        ProgressLine {
            Layout.fillWidth: true
            visible: Cleanup.isScanning
            label: qsTr("%1 files and folders looked at").arg(Format.count(Cleanup.scannedEntries))
            indeterminate: true
        }
        Loader {
            id: pages
            Layout.fillWidth: true
            Layout.fillHeight: true
            focus: true
            sourceComponent: screen.page === "history" ? history : screen.page === "settings" ? settings
                : screen.isEmpty ? nothing : screen.category !== "" ? items : categories
        }
    }
    Component {
        id: nothing
        Item {
            EmptyState {
                anchors.centerIn: parent
                symbol: "externaldrive"
                title: Cleanup.isReady ? qsTr("See what takes up space") : qsTr("Connect a folder first")
                sentence: Cleanup.isReady
                    ? qsTr("Large files, old downloads and screenshots, installers, unused apps, caches and logs are listed. Nothing is changed until you review it.")
                    : qsTr("Your connected folders are looked through for what you may no longer need.")
                action: Cleanup.isReady ? qsTr("Scan") : qsTr("Add folder")
                onActed: Cleanup.isReady ? Cleanup.scan() : App.folders.presentFolderPicker()
            }
        }
    }
    Component {
        id: categories
        CleanupCategories {
            onChosen: category => {
                screen.category = category
                pages.item.forceActiveFocus(Qt.TabFocusReason)
            }
        }
    }
    Component {
        id: items
        CleanupItems {
            category: screen.category
            onLeaveWanted: {
                screen.category = ""
                pages.nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
            }
        }
    }
    Component {
        id: history
        CleanupHistory {}
    }
    Component {
        id: settings
        CleanupSettings {}
    }
}
