import QtQuick.Dialogs
import Tovi.Models

/// Asks for a folder to connect.
FolderDialog {
    objectName: "folder-dialog"

    function ask(question, button, directory) {
        title = question
        acceptLabel = button
        if (directory.toString()) { // offered itself, not one of the folders in it
            currentFolder = directory.toString().replace(/\/[^\/]*\/?$/, "")
            selectedFolder = directory
        }
        open()
    }

    onAccepted: FolderDialogs.finish(selectedFolder)
    onRejected: FolderDialogs.finish("")
}
