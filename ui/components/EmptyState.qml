import QtQuick
import QtQuick.Layouts
import Tovi

/// What a screen shows when it has nothing: a symbol, a title, one sentence, one action.
ColumnLayout {
    id: empty

    required property string symbol
    required property string title
    property string sentence: ""
    property string action: ""

    signal acted

    spacing: 12
    Rectangle {
        Layout.alignment: Qt.AlignHCenter
        implicitWidth: 72
        implicitHeight: 72
        radius: 36
        color: Theme.selected
        AppIcon {
            anchors.centerIn: parent
            symbol: empty.symbol
            extent: 32
            color: Theme.accentText
        }
    }
    AppText {
        Layout.alignment: Qt.AlignHCenter
        text: empty.title
        font.pixelSize: Theme.heading
        isStrong: true
    }
    AppText {
        Layout.fillWidth: true
        Layout.maximumWidth: 420
        Layout.preferredWidth: 420
        Layout.alignment: Qt.AlignHCenter
        visible: text !== ""
        text: empty.sentence
        isSecondary: true
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignHCenter
    }
    ActionButton {
        Layout.alignment: Qt.AlignHCenter
        Layout.topMargin: 4
        visible: empty.action !== ""
        text: empty.action
        isPrimary: true
        onClicked: empty.acted()
    }
}
