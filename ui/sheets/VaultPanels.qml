import QtQuick
import QtQuick.Dialogs
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// The file dialogs of the vault: which files to add, and where a readable copy goes.
Item {
    id: panels

    FileDialog {
        id: openDialog
        objectName: "vault-open-dialog"
        fileMode: FileDialog.OpenFiles
        currentFolder: Format.address(Format.home)
        onAccepted: VaultDialogs.chooseFiles(selectedFiles)
        onRejected: VaultDialogs.cancel()
    }
    FolderDialog {
        id: folderDialog
        onAccepted: sheet.folder = selectedFolder
    }
    Connections {
        target: VaultDialogs
        function onFilesRequested(title, message) {
            openDialog.title = title + " — " + message
            openDialog.open()
        }
        function onDestinationRequested(title, message, name, nameIdentifier, folder, size) {
            sheet.kind = title
            sheet.name = name
            sheet.size = size
            sheet.message = message
            sheet.folder = folder
            field.objectName = nameIdentifier
            field.text = name
            sheet.open()
        }
        function onClosed() {
            openDialog.close()
            folderDialog.close()
            sheet.close()
        }
    }

    Sheet {
        id: sheet

        property string kind: ""
        property string name: ""
        property double size: 0
        property string message: ""
        readonly property string verb: qsTr("Export 1 file, %1").arg(Format.size(size))
        property url folder

        function save() {
            VaultDialogs.chooseDestination(folder, field.text)
            close()
        }

        title: verb
        first: cancel
        onClosed: VaultDialogs.cancel()

        ColumnLayout {
            width: parent.width
            spacing: 16
            AppText {
                text: sheet.verb
                font.pixelSize: Theme.heading
                isStrong: true
                Accessible.role: Accessible.Heading
            }
            RowLayout {
                spacing: 12
                AppIcon { symbol: "lock" }
                AppText {
                    Layout.fillWidth: true
                    text: qsTr("%1: %2").arg(sheet.kind).arg(sheet.name)
                    elide: Text.ElideMiddle
                    isStrong: true
                }
                AppText {
                    text: Format.size(sheet.size)
                    isSecondary: true
                }
            }
            AppText {
                Layout.fillWidth: true
                text: sheet.message
                wrapMode: Text.Wrap
                color: Theme.warning
            }
            InputField {
                id: field
                Layout.fillWidth: true
                label: qsTr("Name of the copy")
                onAccepted: if (save.enabled) sheet.save()
            }
            RowLayout {
                spacing: 12
                AppIcon { symbol: "folder" }
                AppText {
                    Layout.fillWidth: true
                    text: Format.path(VaultDialogs.path(sheet.folder))
                    elide: Text.ElideMiddle
                }
                ActionButton {
                    text: qsTr("Another folder…")
                    onClicked: folderDialog.open()
                }
            }
            RowLayout {
                Layout.alignment: Qt.AlignRight
                spacing: 8
                ActionButton {
                    id: cancel
                    text: qsTr("Cancel")
                    onClicked: sheet.close()
                }
                ActionButton {
                    id: save
                    objectName: "vault-export-confirm"
                    text: sheet.verb
                    isPrimary: true
                    enabled: field.text !== ""
                    onClicked: sheet.save()
                }
            }
        }
    }
}
