import QtQuick
import Tovi

/// One text of a row, on one line. The row says it to assistive technology.
Text {
    property bool isSecondary: true

    height: Theme.rowHeight
    color: isSecondary ? Theme.secondaryText : Theme.text
    font.pixelSize: Theme.body
    horizontalAlignment: Text.AlignLeft // which a mirrored window mirrors
    verticalAlignment: Text.AlignVCenter
    elide: Text.ElideRight
    textFormat: Text.PlainText
}
