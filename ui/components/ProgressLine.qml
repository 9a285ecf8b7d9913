import QtQuick
import QtQuick.Controls.Basic
import Tovi

/// How far something is, from 0 to 1.
ProgressBar {
    id: bar

    required property string label

    implicitHeight: 6
    Accessible.name: label
    background: Rectangle {
        radius: 3
        color: Theme.selected
    }
    contentItem: Item {
        Rectangle {
            width: bar.visualPosition * parent.width
            height: parent.height
            radius: 3
            color: Theme.accent
        }
    }
}
