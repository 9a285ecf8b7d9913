import QtQuick
import Tovi
import Tovi.Models

/// A list that makes its rows in short steps, for all at once would keep the window waiting.
ListView {
    id: list

    /// About how high a row is.
    property real rowHeight: Theme.rowHeight
    /// How high what lies over its first row is: the label of a section.
    property real labelHeight: 0
    /// How many it may show so far.
    property int room: 0

    displayMarginEnd: Math.min(0, room * rowHeight - height)
    cacheBuffer: 0
    // The list's own way to follow the keys moves 400 pixels a second.
    highlightFollowsCurrentItem: false
    onCurrentItemChanged: if (currentItem) Qt.callLater(showCurrent)
    function showCurrent() {
        if (!currentItem || currentIndex >= count)
            return
        positionViewAtIndex(currentIndex, ListView.Contain)
        if (currentItem.y < contentY + labelHeight)
            contentY = Math.max(originY, currentItem.y - labelHeight)
    }

    property StepwiseWork work: StepwiseWork {
        isWanted: list.displayMarginEnd < 0 && list.count > 0
        onStep: {
            ++list.room
            if (list.count > 0) // of what is about to be emptied nothing is made
                list.forceLayout()
        }
    }
}
