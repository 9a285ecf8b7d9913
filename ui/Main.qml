import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

ApplicationWindow {
    id: window

    required property string dataDirectory
    required property string homeDirectory

    readonly property var sections: [
        { id: "overview", text: qsTr("Overview"), symbol: "square.grid.2x2", screen: "screens/OverviewScreen.qml" },
        { id: "files", text: qsTr("Files"), symbol: "doc", screen: "screens/FilesScreen.qml" },
        { id: "search", text: qsTr("Search"), symbol: "magnifyingglass", screen: "screens/SearchScreen.qml" },
        { id: "spaces", text: qsTr("Spaces"), symbol: "rectangle.stack", screen: "screens/SpacesScreen.qml" },
        { id: "timeline", text: qsTr("Timeline"), symbol: "calendar", screen: "screens/TimelineScreen.qml" },
        { id: "graph", text: qsTr("Graph"), symbol: "point.3.connected.trianglepath.dotted", screen: "screens/GraphScreen.qml" },
        { id: "downloads", text: qsTr("Downloads"), symbol: "arrow.down.circle", screen: "screens/DownloadsScreen.qml" },
        { id: "duplicates", text: qsTr("Duplicates"), symbol: "square.on.square", screen: "screens/DuplicatesScreen.qml" },
        { id: "storage", text: qsTr("Storage"), symbol: "externaldrive", screen: "screens/StorageScreen.qml" },
        { id: "activity", text: qsTr("Activity"), symbol: "clock", screen: "screens/ActivityScreen.qml" },
        { id: "settings", text: qsTr("Settings"), symbol: "gearshape", screen: "screens/SettingsScreen.qml" },
        { id: "models", text: qsTr("Models"), symbol: "cpu", screen: "screens/ModelsScreen.qml" },
        { id: "privacy", text: qsTr("Privacy"), symbol: "lock.shield", screen: "screens/PrivacyScreen.qml" },
        { id: "vault", text: qsTr("Vault"), symbol: "lock", screen: "screens/VaultScreen.qml" }
    ]
    readonly property var current: sections.find(section => section.id === App.section) || sections[1]
    readonly property bool isPaused: App.scan.isPaused // which tells of every step of a scan
    readonly property var commands: sections.map(section => ({
        text: section.text, symbol: section.symbol, run: () => App.section = section.id
    })).concat([
        { text: qsTr("Add folder"), symbol: "folder.badge.plus", run: () => App.folders.presentFolderPicker() },
        { text: qsTr("Quick search"), symbol: "magnifyingglass", run: () => QuickPanel.present() },
        { text: qsTr("Scan again"), symbol: "arrow.clockwise", run: () => App.scan.rescan() },
        { text: isPaused ? qsTr("Resume indexing") : qsTr("Pause indexing"),
          symbol: isPaused ? "play" : "pause", run: () => App.scan.pauseIndexing() },
        { text: qsTr("Keys"), symbol: "list.bullet", run: () => shortcuts.use(sheet => sheet.open()) }
    ])
    property var visited: [] // the last is the current one

    function find() {
        App.section = "search"
        content.finish()
        content.item.begin()
    }
    /// Scrolls so that what has the keyboard is seen, a control of a list's row with all of the row.
    function follow(item) {
        for (let at = item; at && at.parent; at = at.parent) {
            const view = at.parent.parent
            if (!(view instanceof Flickable) || view.contentItem !== at.parent)
                continue
            let shown = item
            if (view instanceof GradualList) {
                if (at === item)
                    return Qt.callLater(view.showCurrent)
                if (at.height < view.height)
                    shown = at
            }
            const margin = 32 // Tab leads to the next row, which is made where it is seen
            const top = shown.mapToItem(view.contentItem, 0, 0).y
            if (top < view.contentY)
                view.contentY = Math.max(view.originY, top - margin)
            else if (top + shown.height > view.contentY + view.height && shown.height < view.height)
                view.contentY = Math.min(top + shown.height + margin, view.contentHeight + view.originY) - view.height
            return
        }
    }
    /// Whether what has the keyboard does not show it.
    function isNowhere(item) {
        if (!item.visible || item.parent === null)
            return true
        for (let at = item; at && !at.activeFocusOnTab; at = at.parent) {
            if (at === content)
                return true
        }
        return false
    }
    function enterScreen() {
        content.forceActiveFocus(Qt.TabFocusReason)
        if (isNowhere(activeFocusItem))
            content.nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
    }
    function goBack() {
        if (visited.length < 2)
            return
        visited = visited.slice(0, -1)
        App.section = visited[visited.length - 1]
    }
    Connections {
        target: App
        function onSectionChanged() {
            if (window.visited[window.visited.length - 1] !== App.section)
                window.visited = window.visited.concat([App.section]).slice(-50)
        }
    }

    width: 1180
    height: Math.min(760, Screen.height - 120) // with its title between the bars of a small desktop
    minimumWidth: 720
    minimumHeight: 480
    title: qsTr("Tovi — %1").arg(current.text)
    color: Theme.background
    LayoutMirroring.enabled: Qt.application.layoutDirection === Qt.RightToLeft
    LayoutMirroring.childrenInherit: true
    readonly property var colorRoles: [
        ["mid", Theme.outline],
        ["dark", Theme.border],
        ["toolTipBase", Theme.raised],
        ["toolTipText", Theme.text]
    ]
    property int givenRoles: 0
    onColorRolesChanged: givenRoles = 0
    StepwiseWork { // for each goes through all that is in the window
        isWanted: window.givenRoles < window.colorRoles.length
        onStep: {
            const [role, color] = window.colorRoles[window.givenRoles]
            window.palette[role] = color
            ++window.givenRoles
        }
    }

    Binding { target: Theme; property: "choice"; value: App.settings.themeChoice }
    Binding { target: Format; property: "home"; value: window.homeDirectory }
    Binding { target: Theme; property: "appearance"; value: App.settings.appearance }
    Binding { target: Theme; property: "isSystemDark"; value: SystemAppearance.isDark; when: SystemAppearance.knowsScheme }
    Binding {
        target: Theme
        property: "highContrast"
        value: Desktop.moreContrast === "system" ? SystemAppearance.hasHighContrast : Desktop.moreContrast === "on"
    }
    Binding {
        target: Theme
        property: "reducedMotion"
        value: Desktop.lessMotion === "system" ? SystemAppearance.hasReducedMotion : Desktop.lessMotion === "on"
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0

        Rectangle {
            id: sidebar
            readonly property bool isNarrow: window.width < 900
            Layout.fillHeight: true
            Layout.preferredWidth: isNarrow ? 60 : 212
            color: Theme.sidebar

            ColumnLayout {
                anchors.fill: parent
                anchors.margins: 12
                spacing: 2
                RowLayout {
                    Layout.margins: sidebar.isNarrow ? 5 : 8
                    Layout.bottomMargin: 14
                    spacing: 10
                    Mark { extent: 26 }
                    AppText {
                        visible: !sidebar.isNarrow
                        text: "Tovi"
                        font.pixelSize: Theme.heading
                        isStrong: true
                    }
                }
                Flickable {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    contentHeight: list.implicitHeight
                    boundsBehavior: Flickable.StopAtBounds
                    clip: true
                    ColumnLayout {
                        id: list
                        width: parent.width
                        spacing: 2
                        Repeater {
                            id: rows
                            model: GradualModel {
                                isHeld: !window.visible
                                model: window.sections
                                delegate: NavigationRow {
                                    required property var modelData
                                    required property int index
                                    Layout.fillWidth: true
                                    text: modelData.text
                                    symbol: modelData.symbol
                                    isCompact: window.height < 680
                                    isNarrow: sidebar.isNarrow
                                    isCurrent: window.current.id === modelData.id
                                    onClicked: modelData.id === "search" ? window.find() : (App.section = modelData.id)
                                    Keys.onUpPressed: if (index > 0) rows.itemAt(index - 1).forceActiveFocus(Qt.BacktabFocusReason)
                                    Keys.onDownPressed: if (index + 1 < rows.count) rows.itemAt(index + 1).forceActiveFocus(Qt.TabFocusReason)
                                }
                            }
                        }
                    }
                }
                RowLayout {
                    Layout.fillWidth: true
                    Layout.leftMargin: sidebar.isNarrow ? 2 : 8
                    Layout.topMargin: 8
                    spacing: 4
                    AppText {
                        Layout.fillWidth: true
                        visible: !sidebar.isNarrow
                        text: App.notices.statusMessage
                        font.pixelSize: Theme.caption
                        isSecondary: true
                        wrapMode: Text.Wrap
                        maximumLineCount: 3
                        elide: Text.ElideRight
                        Accessible.role: Accessible.StatusBar
                    }
                    IconButton {
                        symbol: window.isPaused ? "play" : "pause"
                        label: window.isPaused ? qsTr("Resume indexing") : qsTr("Pause indexing")
                        visible: App.folders.roots.count > 0
                        onClicked: App.scan.pauseIndexing()
                    }
                }
            }
        }
        Rectangle {
            Layout.fillHeight: true
            Layout.preferredWidth: 1
            visible: sidebar.visible
            color: Theme.border
        }
        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 0
            Banner {
                Layout.fillWidth: true
                radius: 0
                visible: App.notices.errorMessage !== ""
                text: App.notices.errorMessage
                action: App.isLoaded && !App.hasIndex ? qsTr("Build the index anew") : ""
                onActed: App.rebuildIndex()
                onDismissed: App.notices.dismissError()
            }
            Banner {
                Layout.fillWidth: true
                radius: 0
                visible: App.folders.connectionMessage !== ""
                isError: false
                text: App.folders.connectionMessage
                onDismissed: App.folders.dismissConnectionMessage()
            }
            Stage {
                id: content
                objectName: "stage"
                Layout.fillWidth: true
                Layout.fillHeight: true
                focus: true
                screen: window.current.screen
                onLoaded: item => {
                    if (item.hasOwnProperty("dataDirectory"))
                        item.dataDirectory = window.dataDirectory
                }
            }
        }
    }

    Toast {
        id: toast
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 24
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.horizontalCenterOffset: (LayoutMirroring.enabled ? -1 : 1) * (sidebar.visible ? sidebar.width / 2 : 0)
        property var undo: null
        onActed: undo()
        function tell(model, receipt) {
            undo = () => model.undo(receipt)
            show(App.notices.statusMessage, qsTr("Undo"))
        }
    }
    Connections {
        target: App.plans
        function onExecuted(receipt) { toast.tell(App.plans, receipt) }
        function onUndone() { toast.show(App.notices.statusMessage) }
    }
    Connections {
        target: Cleanup
        function onExecuted(receipt) { toast.tell(Cleanup, receipt) }
        function onUndone() { toast.show(App.notices.statusMessage) }
    }
    Connections {
        target: App.copyText
        function onChanged() {
            if (App.copyText.copyTextMessage)
                toast.show(App.copyText.copyTextMessage)
        }
    }

    OnDemand {
        id: folderDialog
        source: "sheets/FolderPicker.qml"
    }
    Connections {
        target: FolderDialogs
        function onRequested(title, message, button, directory) {
            folderDialog.use(dialog => dialog.ask(title, message, button, directory))
        }
    }

    Component.onCompleted: visited = [App.section]
    onActiveFocusItemChanged: follow(activeFocusItem)
    onCurrentChanged: {
        follow(rows.itemAt(sections.indexOf(current)))
        if (current.id !== "vault")
            Vault.forgetWaiting()
    }
    onClosing: Vault.windowClosed()

    OnDemand { source: "sheets/PlanSheet.qml"; isWanted: App.plans.proposedPlan.id !== undefined }
    OnDemand { source: "sheets/CleanupSheet.qml"; isWanted: Cleanup.proposedPlan.id !== undefined }
    OnDemand { source: "sheets/VaultPanels.qml"; isWanted: window.current.id === "vault" }
    OnDemand { id: shortcuts; source: "sheets/ShortcutsSheet.qml" }
    OnDemand {
        source: "sheets/CommandPalette.qml"
        asynchronous: false // for someone who types on
        isWanted: App.showCommandPalette
        onLoaded: item.commands = Qt.binding(() => window.commands)
    }

    Shortcut { sequences: ["Ctrl+K", "Meta+K"]; onActivated: App.showCommandPalette = true }
    Shortcut { sequences: [StandardKey.Find]; onActivated: window.find() }
    Shortcut { sequence: "Ctrl+,"; onActivated: App.section = "settings" }
    Shortcut { sequences: [StandardKey.Undo]; onActivated: Cleanup.undoLast() }
    Shortcut { sequences: ["Ctrl+?", "F1"]; onActivated: shortcuts.use(sheet => sheet.open()) }
    Shortcut { sequence: "F5"; onActivated: App.refresh() }
    Shortcut { sequence: "F9"; onActivated: sidebar.visible = !sidebar.visible }
    Shortcut { sequence: "Alt+Left"; onActivated: window.goBack() }
    Shortcut {
        sequence: "F6"
        onActivated: {
            if (window.activeFocusItem instanceof NavigationRow)
                window.enterScreen()
            else
                rows.itemAt(window.sections.indexOf(window.current)).forceActiveFocus(Qt.TabFocusReason)
        }
    }
    // From what vanished, such as the button of an empty screen, and from a screen where nothing has
    // the keyboard yet, Tab would begin in the sidebar.
    Shortcut {
        sequence: "Tab"
        enabled: window.activeFocusItem !== null && window.isNowhere(window.activeFocusItem)
        onActivated: content.nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
    }
    Shortcut { sequence: "Ctrl+W"; onActivated: window.close() }
    Shortcut { sequences: [StandardKey.Quit]; onActivated: Qt.quit() }
}
