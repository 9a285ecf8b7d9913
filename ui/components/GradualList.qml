import QtQuick
import Tovi
import Tovi.Models

/// A list that makes its rows in short steps, for all at once would keep the window waiting.
ListView {
    id: list

    /// About how high a row is.
    property real rowHeight: Theme.rowHeight
    /// How many it may show so far.
    property int room: 0

    displayMarginEnd: Math.min(0, room * rowHeight - height)
    cacheBuffer: 0

    property StepwiseWork work: StepwiseWork {
        isWanted: list.displayMarginEnd < 0 && list.count > 0
        onStep: {
            ++list.room
            list.forceLayout()
        }
    }
}
