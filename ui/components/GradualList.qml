import QtQuick
import Tovi

/// A list that makes a few rows with every frame, for all at once would keep the window waiting.
ListView {
    id: list

    /// About how high a row is.
    property real rowHeight: Theme.rowHeight
    /// How many it makes with a frame.
    property int step: 4
    /// How many it may show so far.
    property int room: 0

    displayMarginEnd: Math.min(0, room * rowHeight - height)
    cacheBuffer: 0
    onCountChanged: if (displayMarginEnd < 0 && Window.window) Window.window.update()
    Connections {
        target: list.Window.window
        enabled: list.displayMarginEnd < 0 && list.count > 0
        function onFrameSwapped() { list.room += list.step }
    }
}
