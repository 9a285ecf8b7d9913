import QtQuick.Layouts
import Tovi

/// What is read of a connected folder, what never is, and what cannot happen to it.
ColumnLayout {
    spacing: 12
    Statement {
        symbol: "checkmark"
        text: qsTr("Indexed: names, dates and origins of your files, and the text of documents, PDFs and pictures.")
    }
    Statement {
        symbol: "xmark"
        text: qsTr("Never: hidden files, keys and credentials, system folders, caches.")
    }
    Statement {
        symbol: "lock.shield"
        text: qsTr("Nothing leaves this computer, nothing is deleted, nothing is overwritten.")
    }
}
