import QtQuick
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// Asks for a new name; the rename itself is reviewed like every change.
Sheet {
    id: sheet

    property string path: ""
    readonly property string name: Format.fileName(path)

    title: qsTr("Rename")
    first: field

    signal proposed(string newPath)

    function ask(file) {
        path = file
        field.text = name
        open()
        const dot = name.lastIndexOf(".")
        field.select(0, dot > 0 ? dot : name.length)
    }
    function propose() {
        App.plans.proposeRename(path, field.text)
        proposed(Format.folder(path) + "/" + field.text)
        close()
    }

    ColumnLayout {
        width: parent.width
        spacing: 16
        AppText {
            Layout.fillWidth: true
            text: qsTr("Rename “%1”").arg(sheet.name)
            elide: Text.ElideMiddle
            font.pixelSize: Theme.heading
            isStrong: true
        }
        InputField {
            id: field
            Layout.fillWidth: true
            label: qsTr("New name")
            onAccepted: if (review.enabled) sheet.propose()
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: 8
            ActionButton {
                text: qsTr("Cancel")
                onClicked: sheet.close()
            }
            ActionButton {
                id: review
                text: qsTr("Review")
                isPrimary: true
                enabled: field.text !== "" && field.text !== sheet.name
                onClicked: sheet.propose()
            }
        }
    }
}
