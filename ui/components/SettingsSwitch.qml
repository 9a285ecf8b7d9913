import QtQuick
import QtQuick.Controls.Basic
import Tovi

/// A setting that is on or off.
Switch {
    id: control

    padding: 0
    spacing: 12
    Accessible.name: text
    Accessible.onPressAction: turn()
    Accessible.onToggleAction: turn()
    function turn() {
        toggle()
        toggled()
    }

    indicator: Rectangle {
        implicitWidth: 40
        implicitHeight: 24
        x: control.mirrored ? control.width - width : 0
        anchors.verticalCenter: parent.verticalCenter
        radius: 12
        color: control.checked ? Theme.accent : Theme.background
        border.width: 1
        border.color: control.checked ? Theme.accent : Theme.outline
        Rectangle {
            x: control.visualPosition * (parent.width - width - 6) + 3
            anchors.verticalCenter: parent.verticalCenter
            width: 18
            height: 18
            radius: 9
            color: control.checked ? Theme.accentInk : Theme.outline
        }
        FocusRing {
            control: control
            cornerRadius: 12
        }
    }
    contentItem: AppText {
        leftPadding: control.mirrored ? 0 : 52
        rightPadding: control.mirrored ? 52 : 0
        text: control.text
        wrapMode: Text.Wrap
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
}
