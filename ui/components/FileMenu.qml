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

    MenuItem {
        text: qsTr("Open")
        onTriggered: App.open(menu.path)
    }
    MenuItem {
        text: qsTr("Show in folder")
        onTriggered: App.reveal(menu.path)
    }
    MenuItem {
        text: qsTr("Preview")
        onTriggered: menu.previewRequested()
    }
    MenuSeparator {}
    MenuItem {
        text: qsTr("Copy text")
        onTriggered: App.copyIndexedText()
    }
    MenuItem {
        text: qsTr("Show connections")
        onTriggered: {
            App.selection.selectedIDs = [menu.path]
            App.section = "graph"
        }
    }
    MenuItem {
        text: qsTr("Rename…")
        enabled: menu.chosen.length === 1
        onTriggered: menu.renameRequested(menu.path)
    }
    MenuItem {
        text: qsTr("Move to Trash…")
        enabled: menu.chosen.length > 0
        onTriggered: App.plans.proposeTrash(menu.chosen)
    }
}
