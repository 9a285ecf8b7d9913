import QtQuick
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// A passage and the file it stands in.
ListRow {
    id: card

    required property string excerpt
    required property string path
    required property string name
    required property var file
    required property string question
    property string place: ""
    // A passage may begin and end within a sentence.
    readonly property string shown: (excerpt.charAt(0) === excerpt.charAt(0).toUpperCase() ? "" : "…")
        + excerpt.trim() + (/[.!?…"”。]\s*$/.test(excerpt) ? "" : "…")

    height: column.implicitHeight + 32
    Accessible.name: name
    Accessible.description: shown + ", " + place

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 16
        spacing: 10
        RowLayout {
            Layout.fillWidth: true
            spacing: 10
            AppIcon { symbol: card.file.symbol }
            AppText {
                text: card.name
                isStrong: true
                Layout.maximumWidth: card.width / 2
                elide: Text.ElideMiddle
            }
            AppText {
                Layout.fillWidth: true
                text: Format.path(card.file.folder) + "  ·  " + Format.date(card.file.modifiedAt)
                elide: Text.ElideMiddle
                isSecondary: true
                font.pixelSize: Theme.caption
            }
            ActionButton {
                text: qsTr("Open")
                Accessible.description: card.name
                onClicked: App.open(card.path)
            }
            ActionButton {
                text: qsTr("Show in folder")
                Accessible.description: card.name
                onClicked: App.reveal(card.path)
            }
        }
        MarkedText {
            Layout.fillWidth: true
            excerpt: Preview.marked(card.shown, card.question, card.file.kind)
            lineHeight: 1.25
        }
    }
}
