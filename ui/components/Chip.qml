import QtQuick
import QtQuick.Layouts
import Tovi

/// A short word on a tinted ground, such as how a part of a phrase was understood.
Rectangle {
    id: chip

    required property string text
    property string symbol: ""

    implicitHeight: label.implicitHeight + 8
    implicitWidth: row.implicitWidth + 20
    radius: height / 2
    color: Theme.selected

    RowLayout {
        id: row
        anchors.centerIn: parent
        spacing: 6
        AppIcon {
            visible: chip.symbol !== ""
            symbol: chip.symbol
            extent: 14
            color: Theme.accentText
        }
        AppText {
            id: label
            text: chip.text
            color: Theme.accentText
            font.pixelSize: Theme.caption
            isStrong: true
        }
    }
}
