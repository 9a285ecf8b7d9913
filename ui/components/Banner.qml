import QtQuick
import QtQuick.Layouts
import Tovi

/// A sentence across the top of a screen, with a way to put it away and perhaps one action.
Rectangle {
    id: banner

    required property string text
    property string action: ""
    property bool isError: true

    signal dismissed
    signal acted

    implicitHeight: Math.max(44, label.implicitHeight + 20)
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
            symbol: "xmark"
            label: qsTr("Dismiss")
            onClicked: banner.dismissed()
        }
    }
}
