import QtQuick
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// What was changed, with its undo.
FocusScope {
    id: screen

    readonly property string title: qsTr("Activity")

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        spacing: 16

        ScreenHeader {
            Layout.fillWidth: true
            title: screen.title
            subtitle: qsTr("Every change that Tovi made to your files, with its way back")
        }
        ReceiptList {
            Layout.fillWidth: true
            Layout.fillHeight: true
            focus: true
            title: screen.title
            changes: App.plans.actions
            emptySentence: qsTr("Moves to the Trash and renames appear here, and can be taken back here.")
            keeper: App.plans
        }
    }
}
