import QtQuick
import Tovi
import Tovi.Models

/// A list that makes its rows in short steps, for all at once would keep the window waiting. They have
/// an `index`.
ListView {
    id: list

    /// About how high a row is.
    property real rowHeight: Theme.rowHeight
    /// How high what lies over its first row is: the label of a section.
    property real labelHeight: 0
    /// How many it may show so far, and how many it needs: where rows are used again, as many more for
    /// the next page, which wait for it.
    property int room: 0
    readonly property int needed: Math.ceil(height / rowHeight) * (reuseItems ? 2 : 1)

    function showCurrent() {
        if (!currentItem || currentIndex >= count || room === 0)
            return // without rows it would be led astray
        positionViewAtIndex(currentIndex, ListView.Contain)
        if (currentItem.y < contentY + labelHeight)
            contentY = Math.max(originY, currentItem.y - labelHeight)
    }
    function enter(row) {
        currentIndex = row
        if (!currentItem)
            return
        currentItem.forceActiveFocus()
        currentItem.focusReason = Qt.TabFocusReason // to be seen; the list itself gives none
    }
    /// The row that has the keyboard, itself or a control in it.
    function rowAtKeyboard() {
        for (let at = Window.activeFocusItem; at; at = at.parent) {
            if (at.parent === contentItem)
                return at.index
        }
        return currentIndex
    }

    // Without room not even the first row, which would be made as a part of what the list is in. Until it
    // has its place a list may be less than nothing high.
    displayMarginEnd: room === 0 || room < needed ? room * rowHeight - Math.max(0, height) - 1 : 0
    cacheBuffer: 0
    currentIndex: -1
    // The list's own way to follow the keys moves 400 pixels a second.
    highlightFollowsCurrentItem: false
    onCurrentItemChanged: if (currentItem) Qt.callLater(showCurrent)
    Keys.onPressed: event => {
        const at = rowAtKeyboard()
        const page = Math.max(1, Math.floor(height / (contentHeight / count)) - 1)
        const rows = { [Qt.Key_Up]: at - 1, [Qt.Key_Down]: at + 1, [Qt.Key_PageUp]: at - page,
                       [Qt.Key_PageDown]: at + page, [Qt.Key_Home]: 0, [Qt.Key_End]: count - 1 }
        if (!keyNavigationEnabled || count === 0 || !(event.key in rows))
            return
        event.accepted = true
        enter(Math.max(0, Math.min(count - 1, rows[event.key])))
    }

    /// Leaves room for the rows in sight with such an index; those that follow come step by step.
    function keep(stays) {
        let kept = 0
        for (let at = 0; at < contentItem.children.length; ++at) {
            const row = contentItem.children[at]
            if (row.index !== undefined && stays(row.index) && row.y + row.height > contentY)
                kept += row.height + spacing
        }
        room = Math.min(room, Math.max(1, Math.ceil(kept / rowHeight)))
    }
    onCountChanged: if (count === 0) room = 0
    property Connections changes: Connections {
        target: list.model && list.model.rowsAboutToBeRemoved ? list.model : null // some are arrays
        function onRowsAboutToBeRemoved(parent, first, last) {
            list.keep(index => index < first || index > last)
        }
        // A table that fills would flicker, and its rows are made quickly of those that were used before.
        function onRowsAboutToBeInserted(parent, first, last) {
            if (last > first && !list.reuseItems)
                list.keep(index => index < first)
        }
    }

    property StepwiseWork work: StepwiseWork {
        isWanted: list.room < list.needed && list.count > 0
        onStep: {
            ++list.room
            if (list.currentIndex < 0 && list.keyNavigationEnabled)
                list.currentIndex = 0
            list.forceLayout()
            if (list.room === 1)
                list.showCurrent()
        }
    }
}
