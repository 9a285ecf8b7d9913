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
    /// How the rows can be sorted, as `TableHeader` wants it; null where their order is fixed.
    property var sorter: null
    /// What was searched for; the rows then show where it stands in the texts.
    property string phrase: ""
    readonly property string currentPath: list.currentItem ? list.currentItem.path : ""
    /// The row's roles; null without one.
    readonly property var currentFile: list.currentItem
    readonly property int count: list.count
    /// The path of the current row once someone who runs through the list stands still; what shows
    /// a file follows it.
    property string shownPath: ""

    signal moreWanted

    property int anchorRow: -1
    readonly property int folderWidth: width > 720 ? 200 : 0
    readonly property int kindWidth: width > 820 ? 90 : 0
    readonly property int dateWidth: 96
    readonly property int sizeWidth: width > 440 ? 76 : 0
    readonly property int rowHeight: Theme.rowHeight + (phrase === "" ? 0 : Theme.caption + 4)

    function pathAt(row) {
        return files.value(row, "path") || ""
    }
    function isChosen(path) {
        return App.selection.count > 0 && App.selection.contains(path)
    }
    function choose(row, modifiers) {
        if (row < 0 || row >= list.count)
            return
        const path = pathAt(row)
        if (modifiers & Qt.ShiftModifier && anchorRow >= 0) {
            App.selection.selectedIDs = files.texts("path", Math.min(row, anchorRow), Math.max(row, anchorRow))
        } else if (modifiers & Qt.ControlModifier) {
            App.selection.toggle(path)
            anchorRow = row
        } else {
            App.selection.selectedIDs = [path]
            anchorRow = row
        }
        list.currentIndex = row
    }
    function tap(row, button, modifiers) {
        list.forceActiveFocus()
        if (button === Qt.RightButton) {
            if (!isChosen(pathAt(row)))
                choose(row, Qt.NoModifier)
            list.currentIndex = row
            menu.use(menu => menu.popup())
        } else {
            choose(row, modifiers)
        }
    }
    /// Hands out the file that was pressed; a quick hand is on another row when its drag begins.
    function drag(pressed) {
        const place = mapToItem(list.contentItem, pressed)
        const row = list.itemAt(place.x, place.y)
        if (!row)
            return
        if (!row.isChosen)
            choose(row.index, Qt.NoModifier)
        row.Drag.mimeData = { "text/uri-list": addresses() }
        row.Drag.active = true
    }
    /// The chosen files as other programs take them.
    function addresses() {
        return App.selection.selectedIDs.map(Format.address).join("\r\n")
    }
    function move(by, modifiers) {
        const row = Math.max(0, Math.min(list.count - 1, list.currentIndex + by))
        if (modifiers & Qt.ControlModifier)
            list.currentIndex = row
        else
            choose(row, modifiers & Qt.ShiftModifier)
    }
    function typeAhead(letter) {
        const begins = files.texts("name").map(name => name.toLowerCase().startsWith(letter))
        const next = begins.indexOf(true, list.currentIndex + 1)
        choose(next >= 0 ? next : begins.indexOf(true), Qt.NoModifier)
    }

    Accessible.role: Accessible.Table
    Accessible.name: qsTr("Files")

    RowLayout {
        id: header
        width: parent.width - 24
        x: 12
        height: 30
        spacing: 12
        TableHeader {
            Layout.fillWidth: true
            column: "name"
            text: qsTr("Name")
            sorter: table.sorter
        }
        TableHeader {
            visible: table.folderWidth > 0
            Layout.preferredWidth: table.folderWidth
            column: "folder"
            text: qsTr("Folder")
            sorter: table.sorter
        }
        TableHeader {
            visible: table.kindWidth > 0
            Layout.preferredWidth: table.kindWidth
            column: "kind"
            text: qsTr("Kind")
            sorter: table.sorter
        }
        TableHeader {
            Layout.preferredWidth: table.dateWidth
            column: "modified"
            text: table.showsDownloadDate ? qsTr("Downloaded") : qsTr("Modified")
            sorter: table.sorter
        }
        TableHeader {
            visible: table.sizeWidth > 0
            Layout.preferredWidth: table.sizeWidth
            column: "size"
            text: qsTr("Size")
            sorter: table.sorter
            isAtEnd: true
        }
    }
    Rectangle {
        anchors.top: header.bottom
        width: parent.width
        height: 1
        color: Theme.border
    }

    GradualList {
        id: list
        anchors.fill: parent
        anchors.topMargin: header.height + 1
        rowHeight: table.rowHeight
        focus: true
        activeFocusOnTab: true
        clip: true
        model: table.files
        reuseItems: true
        boundsBehavior: Flickable.StopAtBounds
        keyNavigationEnabled: false
        section.property: table.sectionRole
        labelHeight: table.sectionRole ? Theme.rowHeight : 0
        section.labelPositioning: ViewSection.InlineLabels
            | (table.sectionRole ? ViewSection.CurrentLabelAtStart : 0) // an empty one otherwise
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
        onActiveFocusChanged: if (activeFocus && currentIndex < 0) table.choose(0, Qt.NoModifier)
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Files")

        Keys.onPressed: event => {
            const page = Math.max(1, Math.floor(height / table.rowHeight) - 1)
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
                    renameSheet.use(sheet => sheet.ask(table.currentPath))
                return
            case Qt.Key_Delete:
                if (App.selection.selectedIDs.length > 0)
                    App.plans.proposeTrash(App.selection.selectedIDs)
                return
            case Qt.Key_A:
                if (event.modifiers & Qt.ControlModifier) {
                    App.selection.selectedIDs = table.files.texts("path")
                    return
                }
            }
            if (event.modifiers === Qt.NoModifier && event.text.length === 1 && event.text > " ")
                table.typeAhead(event.text.toLowerCase())
            else
                event.accepted = false
        }

        delegate: FileRow {
            owner: table
            width: ListView.view.width
            Keys.onSpacePressed: event => {
                if (event.modifiers & Qt.ControlModifier)
                    table.choose(index, event.modifiers)
                else
                    preview.use(sheet => sheet.open())
            }
        }
    }

    function showCurrent() {
        shownPath = currentPath
        Preview.show(shownPath, phrase)
    }
    Timer {
        id: pause
        interval: 120
        onTriggered: table.showCurrent()
    }
    onCurrentPathChanged: {
        if (!pause.running)
            Qt.callLater(showCurrent)
        pause.restart()
    }
    onPhraseChanged: pause.restart()

    // Rows that come in another order are other rows to the list, as is a file under a new name.
    Connections {
        id: rows
        target: table.files
        property string soughtPath: ""
        property bool areAnew: false
        function onRowsAboutToBeRemoved(parent, first, last) {
            if (first > 0 || last < table.files.count - 1 || table.currentPath === "")
                return
            soughtPath = table.currentPath
            areAnew = true
        }
        function onRowsRemoved() {
            Qt.callLater(chooseAnother)
        }
        /// Where what was chosen went away, the file that took its place.
        function chooseAnother() {
            const chosen = App.selection.selectedIDs
            if (soughtPath === "" && chosen.length > 0 && !chosen.some(path => table.files.rowOf(path) >= 0))
                table.choose(list.currentIndex, Qt.NoModifier)
        }
        function onRowsInserted() {
            if (soughtPath !== "")
                Qt.callLater(choose)
        }
        function choose() {
            const row = table.files.rowOf(soughtPath)
            if (row < 0 && !areAnew)
                return
            list.forceLayout()
            list.currentIndex = row
            if (row < 0)
                App.selection.clear()
            else if (!areAnew)
                App.selection.selectedIDs = [soughtPath]
            soughtPath = ""
            areAnew = false
        }
    }

    OnDemand {
        id: menu
        sourceComponent: FileMenu {
            parent: table
            path: table.currentPath
            onRenameRequested: path => renameSheet.use(sheet => sheet.ask(path))
            onPreviewRequested: preview.use(sheet => sheet.open())
        }
    }
    OnDemand {
        id: renameSheet
        sourceComponent: RenameSheet {
            onProposed: path => rows.soughtPath = path
        }
    }
    OnDemand {
        id: preview
        sourceComponent: PreviewSheet { owner: table }
    }
    function showMenu() {
        if (!list.currentItem)
            return
        menu.use(menu => {
            menu.popup(list.currentItem, 40, rowHeight)
            menu.currentIndex = 0
        })
    }
    Keys.onMenuPressed: showMenu()
    Shortcut {
        sequence: "Shift+F10"
        enabled: list.activeFocus
        onActivated: table.showMenu()
    }
}
