import QtQuick
import QtQuick.Controls.Basic

/// A button without a look: pressed by the mouse, the keyboard and assistive technology.
AbstractButton {
    Accessible.onPressAction: if (enabled) clicked()
    Accessible.onToggleAction: if (enabled) clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
}
