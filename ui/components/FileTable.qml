import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// Files in rows: chosen with the mouse or the keyboard, opened, shown in their folder, renamed or
/// proposed for the Trash. The choice is kept by path and outlives a refresh.
FocusScope {
    id: table

    required property var files
    property bool hasMore: false
    /// Whether the date shown is the one of the download, where it is known.
    property bool showsDownloadDate: false
    /// The role by which rows stand together under a heading that stays in sight; its words are
    /// made by `sectionTitle`.
    property string sectionRole: ""
    property var sectionTitle: section => section
    readonly property string currentPath: list.currentIndex < 0 ? "" : pathAt(list.currentIndex)

    signal moreWanted
    signal renameRequested(string path)

    property int anchorRow: -1
    readonly property bool showsFolder: width > 640
    readonly property bool showsKind: width > 820

    function pathAt(row) {
        return files.value(row, "path") || ""
    }
    function isChosen(path) {
        return App.selection.selectedIDs.indexOf(path) >= 0
    }
    function choose(row, modifiers) {
        if (row < 0 || row >= list.count)
            return
        const path = pathAt(row)
        if (modifiers & Qt.ShiftModifier && anchorRow >= 0) {
            const chosen = []
            for (let at = Math.min(row, anchorRow); at <= Math.max(row, anchorRow); ++at)
                chosen.push(pathAt(at))
            App.selection.selectedIDs = chosen
        } else if (modifiers & Qt.ControlModifier) {
            App.selection.toggle(path)
            anchorRow = row
        } else {
            App.selection.selectedIDs = [path]
            anchorRow = row
        }
        list.currentIndex = row
    }
    function move(by, modifiers) {
        const row = Math.max(0, Math.min(list.count - 1, list.currentIndex + by))
        if (modifiers & Qt.ControlModifier)
            list.currentIndex = row
        else
            choose(row, modifiers & Qt.ShiftModifier)
    }
    function typeAhead(letter) {
        for (let step = 1; step <= list.count; ++step) {
            const row = (list.currentIndex + step) % list.count
            if (String(files.value(row, "name")).toLowerCase().startsWith(letter)) {
                choose(row, Qt.NoModifier)
                return
            }
        }
    }

    Accessible.role: Accessible.Table
    Accessible.name: qsTr("Files")

    RowLayout {
        id: header
        width: parent.width - 24
        x: 12
        height: 30
        spacing: 12
        Repeater {
            model: [
                { title: qsTr("Name"), width: -1, isShown: true },
                { title: qsTr("Folder"), width: 200, isShown: table.showsFolder },
                { title: qsTr("Kind"), width: 90, isShown: table.showsKind },
                { title: table.showsDownloadDate ? qsTr("Downloaded") : qsTr("Modified"), width: 96, isShown: true },
                { title: qsTr("Size"), width: 76, isShown: true }
            ]
            AppText {
                required property var modelData
                required property int index
                visible: modelData.isShown
                Layout.fillWidth: modelData.width < 0
                Layout.preferredWidth: modelData.width
                horizontalAlignment: index === 4 ? Text.AlignRight : Text.AlignLeft
                text: modelData.title
                font.pixelSize: Theme.caption
                isSecondary: true
                isStrong: true
            }
        }
    }
    Rectangle {
        anchors.top: header.bottom
        width: parent.width
        height: 1
        color: Theme.border
    }

    ListView {
        id: list
        anchors.fill: parent
        anchors.topMargin: header.height + 1
        focus: true
        activeFocusOnTab: true
        clip: true
        model: table.files
        reuseItems: true
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        currentIndex: -1
        section.property: table.sectionRole
        section.labelPositioning: ViewSection.InlineLabels | ViewSection.CurrentLabelAtStart
        section.delegate: Rectangle {
            required property string section
            width: ListView.view.width
            height: Theme.rowHeight
            color: Theme.surface
            AppText {
                anchors.fill: parent
                anchors.leftMargin: 12
                text: table.sectionTitle(parent.section)
                verticalAlignment: Text.AlignVCenter
                color: Theme.accentText
                isStrong: true
                Accessible.role: Accessible.Heading
            }
        }
        ScrollBar.vertical: ScrollBar {}
        onAtYEndChanged: if (atYEnd && table.hasMore && count > 0) table.moreWanted()
        onActiveFocusChanged: if (activeFocus && currentIndex < 0 && count > 0) currentIndex = 0
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Files")

        Keys.onPressed: event => {
            const page = Math.max(1, Math.floor(height / Theme.rowHeight) - 1)
            event.accepted = true
            switch (event.key) {
            case Qt.Key_Up: return table.move(-1, event.modifiers)
            case Qt.Key_Down: return table.move(1, event.modifiers)
            case Qt.Key_PageUp: return table.move(-page, event.modifiers)
            case Qt.Key_PageDown: return table.move(page, event.modifiers)
            case Qt.Key_Home: return table.move(-count, event.modifiers)
            case Qt.Key_End: return table.move(count, event.modifiers)
            case Qt.Key_Return:
            case Qt.Key_Enter:
                if (table.currentPath)
                    event.modifiers & Qt.ControlModifier ? App.reveal(table.currentPath)
                                                         : App.open(table.currentPath)
                return
            case Qt.Key_F2:
                if (table.currentPath)
                    table.renameRequested(table.currentPath)
                return
            case Qt.Key_Delete:
                if (App.selection.selectedIDs.length > 0)
                    App.plans.proposeTrash(App.selection.selectedIDs)
                return
            case Qt.Key_A:
                if (event.modifiers & Qt.ControlModifier) {
                    const all = []
                    for (let row = 0; row < count; ++row)
                        all.push(table.pathAt(row))
                    App.selection.selectedIDs = all
                    return
                }
            }
            if (event.modifiers === Qt.NoModifier && event.text.length === 1 && event.text > " ")
                table.typeAhead(event.text.toLowerCase())
            else
                event.accepted = false
        }

        delegate: ItemDelegate {
            id: row

            required property int index
            required property string path
            required property string name
            required property string folder
            required property string kindTitle
            required property string symbol
            required property var size
            required property var modifiedAt
            required property var downloadedAt

            readonly property var date: table.showsDownloadDate && downloadedAt ? downloadedAt : modifiedAt
            readonly property bool isChosen: table.isChosen(path)
            readonly property bool isCurrent: ListView.isCurrentItem

            width: ListView.view.width
            height: Theme.rowHeight
            padding: 0
            focusPolicy: Qt.NoFocus
            Keys.onSpacePressed: event => table.choose(row.index, event.modifiers)
            Accessible.role: Accessible.ListItem
            Accessible.name: name
            Accessible.description: qsTr("%1, %2, %3, row %4 of %5").arg(kindTitle)
                .arg(Format.size(size)).arg(Format.date(date)).arg(index + 1).arg(list.count)
            Accessible.selected: isChosen
            Accessible.onPressAction: table.choose(row.index, Qt.NoModifier)

            background: Rectangle {
                radius: Theme.rowRadius
                color: row.isChosen ? Theme.selected : row.hovered ? Theme.hover : "transparent"
                border.width: row.isCurrent && list.activeFocus ? 2 : 0
                border.color: Theme.accent
                Rectangle {
                    visible: row.isChosen
                    width: 3
                    height: parent.height - 12
                    radius: 1.5
                    x: row.mirrored ? parent.width - 5 : 2
                    anchors.verticalCenter: parent.verticalCenter
                    color: Theme.accent
                }
            }
            contentItem: Item {
                RowLayout {
                    anchors.fill: parent
                    anchors.leftMargin: 12
                    anchors.rightMargin: 12
                    spacing: 12
                    RowLayout {
                        Layout.fillWidth: true
                        Layout.preferredWidth: 1
                        spacing: 10
                        AppIcon { symbol: row.symbol }
                        AppText {
                            Layout.fillWidth: true
                            text: row.name
                            elide: Text.ElideMiddle
                        }
                    }
                    AppText {
                        visible: table.showsFolder
                        Layout.preferredWidth: 200
                        text: Format.path(row.folder)
                        elide: Text.ElideMiddle
                        isSecondary: true
                    }
                    AppText {
                        visible: table.showsKind
                        Layout.preferredWidth: 90
                        text: row.kindTitle
                        isSecondary: true
                    }
                    AppText {
                        Layout.preferredWidth: 96
                        text: Format.date(row.date)
                        isSecondary: true
                    }
                    AppText {
                        Layout.preferredWidth: 76
                        text: Format.size(row.size)
                        horizontalAlignment: Text.AlignRight
                        isSecondary: true
                    }
                }
            }
            ToolTip.text: path
            ToolTip.visible: hovered
            ToolTip.delay: 900

            TapHandler {
                acceptedButtons: Qt.LeftButton | Qt.RightButton
                onTapped: (point, button) => {
                    list.forceActiveFocus()
                    if (button === Qt.RightButton) {
                        if (!row.isChosen)
                            table.choose(row.index, Qt.NoModifier)
                        menu.popup()
                    } else {
                        table.choose(row.index, point.modifiers)
                    }
                }
                onDoubleTapped: App.open(row.path)
            }
        }
    }

    FileMenu {
        id: menu
        path: table.currentPath
        onRenameRequested: path => table.renameRequested(path)
    }
    Keys.onMenuPressed: menu.popup()
    Shortcut {
        sequence: "Shift+F10"
        enabled: list.activeFocus
        onActivated: menu.popup()
    }
}
