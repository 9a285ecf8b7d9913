import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// The open vault: its files, what was added since it was opened, and the way to lock it.
FocusScope {
    id: contents

    required property string title

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        spacing: 16

        ScreenHeader {
            Layout.fillWidth: true
            title: contents.title
            subtitle: Vault.activity !== ""
                ? Vault.runningSecondsLeft < 0 ? Vault.activity
                    : qsTr("%1  About %2 left").arg(Vault.activity).arg(Format.duration(Vault.runningSecondsLeft))
                : qsTr("%1  ·  locks in %2 without input, and when you leave Tovi")
                    .arg(Format.counted(Vault.items.count, qsTr("file"), qsTr("files")))
                    .arg(Format.duration(Vault.secondsUntilLock))
            ActionButton {
                objectName: "vault-lock"
                text: qsTr("Lock now")
                symbol: "lock"
                onClicked: Vault.lock()
            }
            ActionButton {
                objectName: "vault-add"
                text: qsTr("Add files…")
                symbol: "plus"
                isPrimary: true
                enabled: !Vault.isBusy
                onClicked: Vault.chooseFiles()
            }
        }
        AppText {
            Layout.fillWidth: true
            visible: text !== ""
            text: Vault.errorMessage
            wrapMode: Text.Wrap
            color: Theme.danger
            Accessible.role: Accessible.AlertMessage
        }
        AppText {
            Layout.fillWidth: true
            visible: text !== ""
            text: Vault.notice
            wrapMode: Text.Wrap
            color: Theme.success
            Accessible.role: Accessible.AlertMessage
        }
        Card {
            Layout.fillWidth: true
            visible: Vault.importedOriginals.count > 0
            implicitHeight: originals.implicitHeight + 24
            RowLayout {
                id: originals
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                anchors.margins: 16
                spacing: 12
                AppText {
                    Layout.fillWidth: true
                    text: qsTr("Moving originals to Trash does not encrypt the Trash copies. Copies elsewhere and backups remain outside the vault.")
                    wrapMode: Text.Wrap
                }
                ActionButton {
                    text: qsTr("Review %1…").arg(
                        Format.counted(Vault.importedOriginals.count, qsTr("original"), qsTr("originals")))
                    onClicked: App.plans.proposeVaultOriginalTrash(Vault.originalPaths())
                }
            }
        }
        Card {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: list.count > 0
            GradualList {
                id: list
                anchors.fill: parent
                anchors.margins: 8
                focus: true
                clip: true
                model: Vault.items
                boundsBehavior: Flickable.StopAtBounds
                ScrollBar.vertical: ScrollBar {}
                Accessible.role: Accessible.List
                Accessible.name: contents.title
                delegate: ListRow {
                    id: row

                    required property int index
                    required property string id
                    required property string name
                    required property var size
                    required property double importedAt

                    height: 44
                    isCard: false
                    Accessible.name: name
                    Accessible.description: qsTr("%1, row %2 of %3").arg(Format.size(size)).arg(index + 1).arg(list.count)
                    RowLayout {
                        anchors.fill: parent
                        anchors.leftMargin: 12
                        anchors.rightMargin: 8
                        spacing: 12
                        AppIcon { symbol: "lock" }
                        AppText {
                            Layout.fillWidth: true
                            text: row.name
                            elide: Text.ElideMiddle
                        }
                        AppText {
                            text: Format.date(row.importedAt)
                            isSecondary: true
                        }
                        AppText {
                            Layout.preferredWidth: 80
                            text: Format.size(row.size)
                            horizontalAlignment: Text.AlignRight
                            isSecondary: true
                        }
                        ActionButton {
                            text: qsTr("Export…")
                            Accessible.name: qsTr("Export %1").arg(row.name)
                            enabled: !Vault.isBusy
                            onClicked: Vault.exportItem(row.id)
                        }
                    }
                }
            }
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: list.count === 0
            EmptyState {
                anchors.centerIn: parent
                symbol: "lock"
                title: qsTr("Nothing in the vault yet")
                sentence: qsTr("Added files are copied and encrypted. The originals stay where they are.")
            }
        }
    }
}
