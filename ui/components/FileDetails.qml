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
    /// What was searched for, to be marked in the text.
    property string phrase: ""

    readonly property int row: revision >= 0 && path !== "" ? files.rowOf(path) : -1
    function value(role) {
        return row < 0 ? undefined : files.value(row, role)
    }

    component Fact: ColumnLayout {
        id: fact
        required property string label
        required property string text
        Layout.fillWidth: true
        visible: text !== ""
        spacing: 0
        AppText {
            text: fact.label
            isSecondary: true
            font.pixelSize: Theme.caption
        }
        AppText {
            Layout.fillWidth: true
            text: fact.text
            wrapMode: Text.Wrap
        }
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
                Layout.fillWidth: true
                implicitHeight: picture.isDrawable && !picture.hasFailed ? 190 : 84
                radius: Theme.controlRadius
                color: Theme.background
                FilePicture {
                    id: picture
                    anchors.fill: parent
                    anchors.margins: 8
                    path: details.row < 0 ? "" : details.path
                    kind: details.value("kind") || ""
                    symbol: details.value("symbol") || "doc"
                    version: details.value("modifiedAt") || 0
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
            // What was searched for comes first.
            GridLayout {
                Layout.fillWidth: true
                columns: 1
                rowSpacing: 12
                ColumnLayout {
                    Layout.row: details.phrase === "" ? 0 : 1
                    Layout.fillWidth: true
                    spacing: 12
                    Fact {
                        label: qsTr("Kind")
                        text: details.value("kindTitle") || ""
                    }
                    Fact {
                        label: qsTr("Size")
                        text: Format.size(details.value("size") || 0)
                    }
                    Fact {
                        label: qsTr("Modified")
                        text: Format.dateTime(details.value("modifiedAt"))
                    }
                    Fact {
                        label: qsTr("Downloaded")
                        text: Format.dateTime(details.value("downloadedAt"))
                    }
                    Fact {
                        label: qsTr("From")
                        text: details.value("sourceURL") || ""
                    }
                    Fact {
                        label: qsTr("Content")
                        text: details.value("contentStatus") || ""
                    }
                    Fact {
                        label: qsTr("Where")
                        text: Format.path(details.value("folder") || "")
                    }
                }
                ColumnLayout {
                    Layout.row: details.phrase === "" ? 1 : 0
                    Layout.fillWidth: true
                    visible: excerpt.excerpt !== ""
                    spacing: 0
                    AppText {
                        text: qsTr("Text")
                        isSecondary: true
                        font.pixelSize: Theme.caption
                    }
                    MarkedText {
                        id: excerpt
                        Layout.fillWidth: true
                        excerpt: Preview.path === details.path ? Preview.excerpt : ""
                        isSecondary: true
                    }
                }
            }
        }
    }
}
