import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// What is known of one file.
Card {
    id: details

    required property var files
    required property string path
    property int revision: 0

    readonly property int row: revision >= 0 && path !== "" ? files.rowOf(path) : -1
    function value(role) {
        return row < 0 ? undefined : files.value(row, role)
    }

    Flickable {
        anchors.fill: parent
        anchors.margins: 20
        visible: details.row >= 0
        contentHeight: column.implicitHeight
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        ColumnLayout {
            id: column
            width: parent.width
            spacing: 12
            Rectangle {
                Layout.alignment: Qt.AlignHCenter
                implicitWidth: 72
                implicitHeight: 72
                radius: Theme.cardRadius
                color: Theme.selected
                AppIcon {
                    anchors.centerIn: parent
                    extent: 36
                    symbol: details.value("symbol") || "doc"
                    color: Theme.accentText
                }
            }
            AppText {
                Layout.fillWidth: true
                text: details.value("name") || ""
                wrapMode: Text.WrapAnywhere
                horizontalAlignment: Text.AlignHCenter
                font.pixelSize: Theme.subtitle
                isStrong: true
            }
            RowLayout {
                Layout.alignment: Qt.AlignHCenter
                spacing: 8
                ActionButton {
                    text: qsTr("Open")
                    onClicked: App.open(details.path)
                }
                ActionButton {
                    text: qsTr("Show in folder")
                    onClicked: App.reveal(details.path)
                }
            }
            Repeater {
                model: [
                    { label: qsTr("Kind"), text: details.value("kindTitle") },
                    { label: qsTr("Size"), text: Format.size(details.value("size") || 0) },
                    { label: qsTr("Modified"), text: Format.dateTime(details.value("modifiedAt")) },
                    { label: qsTr("Downloaded"), text: Format.dateTime(details.value("downloadedAt")) },
                    { label: qsTr("From"), text: details.value("sourceURL") },
                    { label: qsTr("Text"), text: details.value("contentStatus") },
                    { label: qsTr("Where"), text: Format.path(details.value("folder") || "") }
                ]
                ColumnLayout {
                    required property var modelData
                    Layout.fillWidth: true
                    visible: !!modelData.text
                    spacing: 0
                    AppText {
                        text: modelData.label
                        isSecondary: true
                        font.pixelSize: Theme.caption
                    }
                    AppText {
                        Layout.fillWidth: true
                        text: modelData.text || ""
                        wrapMode: Text.WrapAnywhere
                    }
                }
            }
        }
    }
    EmptyState {
        anchors.centerIn: parent
        width: parent.width - 32
        visible: details.row < 0
        symbol: "doc"
        title: qsTr("No file chosen")
        sentence: qsTr("Choose a file to see what is known of it.")
    }
}
