import QtQuick
import QtQuick.Layouts
import Tovi

/// A sentence across the top of a screen or a card, perhaps with one action and a way to put it away.
Rectangle {
    id: banner

    required property string text
    property string action: ""
    property bool isError: true
    property bool isDismissable: true

    signal dismissed
    signal acted

    implicitHeight: Math.max(44, label.implicitHeight + 20)
    radius: Theme.controlRadius
    color: isError ? Theme.dangerBackground : Theme.warningBackground
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 16
        anchors.rightMargin: 8
        spacing: 12
        AppIcon {
            symbol: "exclamationmark.triangle"
            color: banner.isError ? Theme.danger : Theme.warning
        }
        AppText {
            id: label
            Layout.fillWidth: true
            text: banner.text
            wrapMode: Text.Wrap
            maximumLineCount: 4
            color: banner.isError ? Theme.danger : Theme.warning
        }
        ActionButton {
            visible: banner.action !== ""
            text: banner.action
            onClicked: banner.acted()
        }
        IconButton {
            visible: banner.isDismissable
            symbol: "xmark"
            label: qsTr("Dismiss")
            onClicked: banner.dismissed()
        }
    }
}
