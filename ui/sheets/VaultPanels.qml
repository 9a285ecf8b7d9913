import QtQuick
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// The file dialogs of the vault: which files to add, and where a readable copy goes.
Item {
    id: panels

    OnDemand {
        id: files
        sourceComponent: ChooserSheet {
            onAccepted: paths => VaultDialogs.chooseFiles(paths)
            onRejected: VaultDialogs.cancel()
        }
    }
    OnDemand {
        id: folders
        sourceComponent: ChooserSheet {
            onAccepted: paths => sheet.folder = paths[0]
        }
    }
    Connections {
        target: VaultDialogs
        function onFilesRequested(title, message) {
            files.use(chooser => chooser.ask(title, message, Format.home, true))
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
            for (const chooser of [files, folders]) {
                chooser.waiting = null
                if (chooser.item)
                    chooser.item.close()
            }
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
        property string folder: ""

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
                    text: Format.path(sheet.folder)
                    elide: Text.ElideMiddle
                }
                ActionButton {
                    text: qsTr("Another folder…")
                    onClicked: folders.use(chooser => chooser.ask(
                        qsTr("Folder of the copy"), qsTr("The copy is written into the folder you choose."),
                        sheet.folder, false))
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
