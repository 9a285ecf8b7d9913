import QtQuick
import QtQuick.Controls
import Tovi

/// What must be decided before anything else: in the middle of the window, over a shade. Escape
/// closes it.
Popup {
    id: sheet

    required property string title

    parent: Overlay.overlay
    x: Math.round((parent.width - width) / 2)
    y: Math.round((parent.height - height) / 2)
    width: Math.min(640, parent.width - 48)
    height: Math.min(implicitHeight, parent.height - 48)
    modal: true
    focus: true
    padding: 24
    closePolicy: Popup.CloseOnEscape

    Overlay.modal: Rectangle { color: Theme.shade }
    background: Rectangle {
        radius: Theme.sheetRadius
        color: Theme.raised
        border.width: 1
        border.color: Theme.border
        Accessible.role: Accessible.Dialog
        Accessible.name: sheet.title
    }
    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.fast } }
    exit: Transition { NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.fast } }
}
