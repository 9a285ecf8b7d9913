import QtQuick
import Tovi

/// The mark of the program, in the colours of the theme.
Rectangle {
    id: mark

    required property int extent

    implicitWidth: extent
    implicitHeight: extent
    radius: extent * 30 / 128
    color: Theme.accent
    AppIcon {
        symbol: "mark.folder"
        extent: mark.extent
        color: Theme.accentInk
    }
    AppIcon {
        symbol: "mark.lens"
        extent: mark.extent
        color: Theme.accent
    }
}
