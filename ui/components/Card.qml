import QtQuick
import Tovi

/// A raised ground for things that belong together.
Rectangle {
    radius: Theme.cardRadius
    color: Theme.surface
    border.width: 1
    border.color: Theme.border
}
