import QtQuick
import QtQuick.Controls.impl
import Tovi

/// A symbol of the program, by its dotted name, tinted. Decoration: what it means is said in words.
IconImage {
    required property string symbol
    property int extent: 18

    source: symbol ? "qrc:/qt/qml/Tovi/icons/" + symbol + ".svg" : ""
    sourceSize.width: extent
    sourceSize.height: extent
    width: extent
    height: extent
    color: Theme.secondaryText
    Accessible.ignored: true
}
