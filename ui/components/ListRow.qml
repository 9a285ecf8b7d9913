import QtQuick
import Tovi

/// A row of a list, with controls or without. Tab leads to the current one and into all of them, the
/// arrow keys from one to another.
Rectangle {
    property bool isCard: true

    width: ListView.view.width
    radius: isCard ? Theme.cardRadius : Theme.rowRadius
    color: isCard ? Theme.surface : "transparent"
    border.width: activeFocus ? 2 : isCard ? 1 : 0
    border.color: activeFocus ? Theme.accent : Theme.border
    activeFocusOnTab: ListView.isCurrentItem || activeFocus
    Accessible.role: Accessible.ListItem
}
