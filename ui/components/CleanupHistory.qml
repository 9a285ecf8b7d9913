import QtQuick
import Tovi
import Tovi.Models

/// What was cleaned up, with its undo.
ReceiptList {
    title: qsTr("Cleanup history")
    changes: Cleanup.history
    emptySentence: qsTr("What you move to the Trash from this screen appears here, and can be taken back here.")
    keeper: Cleanup
}
