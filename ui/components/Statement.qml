import QtQuick
import QtQuick.Layouts
import Tovi

/// A sentence with a symbol before it.
RowLayout {
    id: statement

    required property string symbol
    required property string text

    Layout.fillWidth: true
    spacing: 12
    AppIcon {
        Layout.alignment: Qt.AlignTop
        symbol: statement.symbol
        color: Theme.accentText
    }
    AppText {
        Layout.fillWidth: true
        text: statement.text
        wrapMode: Text.Wrap
    }
}
