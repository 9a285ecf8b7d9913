import QtQuick
import QtQuick.Layouts
import Tovi

/// A notice at the foot of the window that goes by itself, but not while it is looked at.
Rectangle {
    id: toast

    property string text: ""
    property string action: ""
    property int period: 8000

    signal acted
    signal dismissed

    function show(message, actionText) {
        text = message
        action = actionText || ""
        timer.restart()
    }
    function hide() {
        text = ""
        dismissed()
    }

    visible: text !== ""
    implicitWidth: Math.min(row.implicitWidth + 32, 560)
    implicitHeight: row.implicitHeight + 16
    radius: Theme.cardRadius
    color: Theme.raised
    border.width: 1
    border.color: Theme.outline
    Accessible.role: Accessible.Notification
    Accessible.name: text

    Timer {
        id: timer
        interval: toast.period
        onTriggered: hover.hovered || button.activeFocus ? restart() : toast.hide()
    }
    HoverHandler { id: hover }
    RowLayout {
        id: row
        anchors.fill: parent
        anchors.leftMargin: 16
        anchors.rightMargin: 8
        spacing: 12
        AppIcon {
            symbol: "checkmark.circle"
            color: Theme.success
        }
        AppText {
            Layout.fillWidth: true
            text: toast.text
        }
        ActionButton {
            id: button
            visible: toast.action !== ""
            text: toast.action
            onClicked: {
                toast.acted()
                toast.hide()
            }
        }
        IconButton {
            symbol: "xmark"
            label: qsTr("Dismiss")
            onClicked: toast.hide()
        }
    }
}
