import QtQuick
import QtQuick.Controls.Basic
import Tovi

/// A row of a list, with controls or without. Tab leads to the current one and into all of them, the
/// arrow keys from one to another.
Control {
    id: row

    default property alias content: ground.data
    property bool isCard: true

    width: ListView.view.width
    focusPolicy: ListView.isCurrentItem || activeFocus ? Qt.TabFocus : Qt.NoFocus
    Accessible.role: Accessible.ListItem

    contentItem: Rectangle {
        id: ground
        radius: row.isCard ? Theme.cardRadius : Theme.rowRadius
        color: row.isCard ? Theme.surface : "transparent"
        border.width: row.visualFocus ? 2 : row.isCard ? 1 : 0
        border.color: row.visualFocus ? Theme.accent : Theme.border
    }
}
