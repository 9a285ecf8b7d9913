import QtQuick
import QtQuick.Controls.Basic
import Tovi
import Tovi.Models

/// What can be done with the chosen files.
Menu {
    id: menu

    required property string path
    readonly property var chosen: App.selection.selectedIDs

    signal renameRequested(string path)
    signal previewRequested

    padding: 6
    implicitWidth: 290
    background: Rectangle {
        radius: Theme.cardRadius
        color: Theme.raised
        border.width: 1
        border.color: Theme.outline
    }

    MenuRow {
        text: qsTr("Open")
        symbol: "arrow.up.right.square"
        keys: qsTr("Enter")
        onTriggered: App.open(menu.path)
    }
    MenuRow {
        text: qsTr("Show in folder")
        symbol: "folder"
        keys: qsTr("Ctrl+Enter")
        onTriggered: App.reveal(menu.path)
    }
    MenuRow {
        text: qsTr("Preview")
        symbol: "photo"
        keys: qsTr("Space")
        onTriggered: menu.previewRequested()
    }
    MenuRow {
        text: qsTr("Copy text")
        symbol: "doc.on.clipboard"
        onTriggered: App.copyIndexedText()
    }
    MenuRow {
        text: qsTr("Show connections")
        symbol: "point.3.connected.trianglepath.dotted"
        onTriggered: {
            App.selection.selectedIDs = [menu.path]
            App.section = "graph"
        }
    }
    MenuRow {
        text: qsTr("Put into a space…")
        symbol: "rectangle.stack"
        enabled: menu.chosen.length > 0
        onTriggered: App.section = "spaces"
    }
    MenuRow {
        text: qsTr("Encrypt a copy in the vault…")
        symbol: "lock"
        enabled: menu.chosen.length > 0 && !Vault.isBusy
        onTriggered: {
            Vault.addFiles(menu.chosen)
            App.section = "vault"
        }
    }
    MenuRow {
        text: qsTr("Rename…")
        symbol: "pencil"
        keys: qsTr("F2")
        enabled: menu.chosen.length === 1
        onTriggered: menu.renameRequested(menu.path)
    }
    MenuRow {
        text: qsTr("Move to Trash…")
        symbol: "trash"
        keys: qsTr("Delete")
        enabled: menu.chosen.length > 0
        onTriggered: App.plans.proposeTrash(menu.chosen)
    }
}
