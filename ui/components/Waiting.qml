import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi

/// Says what is under way, unless it is over in a moment.
ColumnLayout {
    id: waiting

    required property bool isBusy
    required property string text

    spacing: 12
    visible: isBusy && pause.isOver

    onIsBusyChanged: pause.isOver = false
    Timer {
        id: pause
        property bool isOver: false
        interval: 200
        running: waiting.isBusy && !isOver
        onTriggered: isOver = true
    }
    BusyIndicator {
        Layout.alignment: Qt.AlignHCenter
        running: waiting.visible
        Accessible.ignored: true
    }
    AppText {
        Layout.alignment: Qt.AlignHCenter
        text: waiting.text
        isSecondary: true
    }
}
