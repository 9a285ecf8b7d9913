import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi

/// One line of a menu, with the key that does the same.
MenuItem {
    id: row

    required property string symbol
    property string keys: ""

    implicitHeight: Theme.rowHeight
    padding: 0
    leftPadding: 10
    rightPadding: 10
    Accessible.name: text
    Accessible.onPressAction: if (enabled) clicked()

    contentItem: RowLayout {
        spacing: 10
        AppIcon {
            symbol: row.symbol
            color: row.enabled ? Theme.secondaryText : Theme.disabled
        }
        AppText {
            Layout.fillWidth: true
            text: row.text
            color: row.enabled ? Theme.text : Theme.disabled
            Accessible.ignored: true
        }
        AppText {
            text: row.keys
            font.pixelSize: Theme.caption
            color: row.enabled ? Theme.secondaryText : Theme.disabled
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        radius: Theme.rowRadius
        color: row.highlighted ? Theme.selected : "transparent"
    }
}
