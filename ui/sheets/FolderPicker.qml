import QtQuick.Dialogs
import Tovi.Models

/// Asks for a folder to connect.
FolderDialog {
    objectName: "folder-dialog"

    function ask(question, button, directory) {
        title = question
        acceptLabel = button
        if (directory.toString())
            currentFolder = directory
        open()
    }

    onAccepted: FolderDialogs.finish(selectedFolder)
    onRejected: FolderDialogs.finish("")
}
