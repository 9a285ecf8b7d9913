import QtQuick
import QtQuick.Controls
import Tovi

/// Text in one of the type sizes; elides on one line unless it wraps.
Label {
    property bool isSecondary: false
    property bool isStrong: false

    color: isSecondary ? Theme.secondaryText : Theme.text
    font.pixelSize: Theme.body
    font.weight: isStrong ? Font.DemiBold : Font.Normal
    horizontalAlignment: Text.AlignLeft // which a mirrored window mirrors
    elide: wrapMode === Text.NoWrap ? Text.ElideRight : Text.ElideNone
    textFormat: Text.PlainText
}
