import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// The small search over all windows. The controller shows and hides it.
Window {
    id: panel

    signal dismissed()

    function present() {
        isPlaced ? show() : showMaximized()
        field.forceActiveFocus()
        field.selectAll()
    }

    readonly property int visibleRows: 8
    /// Wayland lets no program place its windows, and desktops put small ones into a corner. There
    /// the window is all of the screen that it may have, and only the panel in it can be seen.
    readonly property bool isPlaced: !Qt.platform.pluginName.startsWith("wayland")

    objectName: "tovi-quick-search"
    title: "Tovi Quick Search"
    flags: Qt.Dialog | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint
    width: isPlaced ? box.width : Screen.width
    height: isPlaced ? box.height : Screen.height
    x: Screen.virtualX + Math.round((Screen.width - width) / 2)
    y: Screen.virtualY + Math.round(Screen.height / 5)
    color: isPlaced ? Theme.raised : "transparent"
    LayoutMirroring.enabled: Qt.application.layoutDirection === Qt.RightToLeft
    LayoutMirroring.childrenInherit: true
    onActiveChanged: if (!active && visible) left.restart()
    onClosing: dismissed()

    // What tells that the panel has lost the focus may be about the panel as it was shown before.
    Timer {
        id: left
        interval: 100
        onTriggered: if (!panel.active && panel.visible) panel.dismissed()
    }
    TapHandler {
        enabled: !panel.isPlaced
        onTapped: point => {
            if (!box.contains(box.mapFromItem(null, point.scenePosition)))
                panel.dismissed()
        }
    }
    Rectangle {
        id: box
        x: panel.isPlaced ? 0 : Math.round((panel.width - width) / 2)
        y: panel.isPlaced ? 0 : Math.round(panel.height / 5)
        width: 640
        height: Math.ceil(content.implicitHeight) + 24
        color: Theme.raised
        border.color: Theme.outline
    }
    ColumnLayout {
        id: content
        x: box.x + 12
        y: box.y + 12
        width: box.width - 24
        spacing: 8

        InputField {
            id: field
            Layout.fillWidth: true
            implicitHeight: Theme.controlHeight + 12
            label: qsTr("Search files")
            placeholderText: qsTr("Search files")
            symbol: "magnifyingglass"
            font.pixelSize: Theme.subtitle
            Component.onCompleted: text = QuickSearch.query
            onTextChanged: QuickSearch.query = text
            Keys.onPressed: event => {
                const control = event.modifiers & Qt.ControlModifier
                event.accepted = true
                if (event.key === Qt.Key_Escape)
                    panel.dismissed()
                else if (event.key === Qt.Key_Down || control && event.key === Qt.Key_J)
                    QuickSearch.moveSelection(1)
                else if (event.key === Qt.Key_Up || control && event.key === Qt.Key_K)
                    QuickSearch.moveSelection(-1)
                else if (event.key === Qt.Key_Home)
                    QuickSearch.moveSelection(-list.count)
                else if (event.key === Qt.Key_End)
                    QuickSearch.moveSelection(list.count)
                else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
                    control ? QuickSearch.revealSelected() : QuickSearch.openSelected()
                else if (event.modifiers & Qt.AltModifier && event.key >= Qt.Key_1 && event.key <= Qt.Key_8)
                    panel.openRow(list.firstVisible + event.key - Qt.Key_1)
                else
                    event.accepted = false
            }
        }
        ListView {
            id: list

            readonly property int rowHeight: Theme.rowHeight + 12
            readonly property int firstVisible: Math.round(contentY / rowHeight)

            Layout.fillWidth: true
            Layout.preferredHeight: Math.min(count, panel.visibleRows) * rowHeight
            visible: count > 0
            clip: true
            model: QuickSearch.matches
            currentIndex: QuickSearch.selectedRow
            highlightMoveDuration: 0
            snapMode: ListView.SnapToItem
            boundsBehavior: Flickable.StopAtBounds
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Matching files")
            delegate: QuickSearchRow {
                width: ListView.view.width
                height: list.rowHeight
                isCurrent: ListView.isCurrentItem
                place: index - list.firstVisible + 1
                description: qsTr("Row %1 of %2, in %3").arg(index + 1).arg(list.count).arg(folder)
                onClicked: panel.openRow(index)
            }
        }
        AppText {
            Layout.fillWidth: true
            Layout.leftMargin: 12
            visible: text !== ""
            text: QuickSearch.errorMessage ? QuickSearch.errorMessage
                : list.count === 0 && !QuickSearch.isSearching ? qsTr("No files match.") : ""
            color: QuickSearch.errorMessage ? Theme.danger : Theme.secondaryText
            elide: Text.ElideRight
        }
    }

    function openRow(row) {
        if (row >= list.count)
            return
        QuickSearch.select(row)
        QuickSearch.openSelected()
    }
}
