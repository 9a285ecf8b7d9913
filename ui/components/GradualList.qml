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

    // Without room not even the first row, which would be made as a part of what the list is in.
    displayMarginEnd: room === 0 ? -height - 1 : room < needed ? room * rowHeight - height : 0
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

    // The next ones come step by step, too; only those that wait to be used again are there already.
    onCountChanged: if (count === 0 && !reuseItems) room = 0

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
