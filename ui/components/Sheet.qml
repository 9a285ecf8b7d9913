import QtQuick
import QtQuick.Controls
import QtQuick.Templates as Templates
import Tovi

/// What must be decided before anything else: in the middle of the window, over a shade. Escape
/// closes it, and its title is what assistive technology is told.
Templates.Dialog {
    id: sheet

    /// What has the keyboard from the moment it is shown.
    property Item first: null

    parent: Overlay.overlay
    x: Math.round((parent.width - width) / 2)
    y: Math.round((parent.height - height) / 2)
    width: Math.min(640, parent.width - 48)
    height: Math.min(implicitHeight, parent.height - 48)
    implicitHeight: contentHeight + topPadding + bottomPadding
    modal: true
    focus: true
    padding: 24
    closePolicy: Popup.CloseOnEscape
    onAboutToShow: if (first) first.focus = true

    Overlay.modal: Rectangle { color: Theme.shade }
    background: Rectangle {
        radius: Theme.sheetRadius
        color: Theme.raised
        border.width: 1
        border.color: Theme.border
    }
    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.fast } }
    exit: Transition { NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.fast } }
}
