import QtQuick
import QtQuick.Dialogs
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// Asks for a folder to connect. One that is offered needs no more than a yes.
Item {
    id: picker

    function ask(title, message, button, directory) {
        dialog.title = title + " — " + message
        sheet.title = title
        sheet.message = message
        dialog.acceptLabel = button
        sheet.button = button
        sheet.folder = directory
        if (directory.toString())
            sheet.open()
        else
            dialog.open()
    }

    FolderDialog {
        id: dialog
        objectName: "folder-dialog"
        currentFolder: Format.address(Format.home)
        // Shown before it is connected: where a folder was entered, Qt's own dialog takes one inside it.
        onAccepted: {
            sheet.folder = selectedFolder
            sheet.open()
        }
        onRejected: FolderDialogs.finish("")
    }
    Sheet {
        id: sheet

        property string message: ""
        property string button: ""
        property url folder
        property url answer

        first: yes
        onAboutToShow: answer = ""
        onClosed: if (!dialog.visible) FolderDialogs.finish(answer)

        ColumnLayout {
            width: parent.width
            spacing: 16
            AppText {
                Layout.fillWidth: true
                text: sheet.title
                wrapMode: Text.Wrap
                font.pixelSize: Theme.heading
                isStrong: true
                Accessible.role: Accessible.Heading
            }
            AppText {
                Layout.fillWidth: true
                text: sheet.message
                wrapMode: Text.Wrap
                isSecondary: true
            }
            Card {
                Layout.fillWidth: true
                implicitHeight: offer.implicitHeight + 32
                color: Theme.background
                ColumnLayout {
                    id: offer
                    anchors.fill: parent
                    anchors.margins: 16
                    spacing: 12
                    Statement {
                        symbol: "folder"
                        readonly property string path: VaultDialogs.path(sheet.folder)
                        text: path === Format.home ? qsTr("Your home folder") : Format.path(path)
                    }
                    Promises { Layout.fillWidth: true }
                }
            }
            RowLayout {
                Layout.alignment: Qt.AlignRight
                spacing: 8
                ActionButton {
                    text: qsTr("Cancel")
                    onClicked: sheet.close()
                }
                ActionButton {
                    text: qsTr("Another folder…")
                    onClicked: {
                        dialog.currentFolder = sheet.folder
                        dialog.open()
                        sheet.close()
                    }
                }
                ActionButton {
                    id: yes
                    text: sheet.button
                    isPrimary: true
                    onClicked: {
                        sheet.answer = sheet.folder
                        sheet.close()
                    }
                }
            }
        }
    }
}
