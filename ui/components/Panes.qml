import QtQuick
import QtQuick.Controls.Basic

/// Parts of a screen side by side, in the direction that the user reads; the gap moves them.
SplitView {
    handle: Item { implicitWidth: 16 }
    Component.onCompleted: {
        if (Qt.application.layoutDirection !== Qt.RightToLeft)
            return
        for (let at = 1; at < count; ++at)
            moveItem(at, 0)
    }
}
