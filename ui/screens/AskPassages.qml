import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// A question, answered with passages as they stand in the files.
FocusScope {
    id: screen

    readonly property string summary: list.count > 0
        ? qsTr("%1 from your files").arg(Format.counted(list.count, qsTr("passage"), qsTr("passages"))) : ""

    function begin() {
        field.forceActiveFocus()
        field.selectAll()
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 16
        InputField {
            id: field
            Layout.fillWidth: true
            implicitHeight: 44
            font.pixelSize: Theme.subtitle
            focus: true
            label: qsTr("Ask your files")
            symbol: "text.quote"
            placeholderText: qsTr("Try “when is the payment due?”, then press Enter")
            text: Evidence.question
            onAccepted: Evidence.ask(text)
            Keys.onDownPressed: list.forceActiveFocus()
        }
        ProgressLine {
            Layout.fillWidth: true
            label: qsTr("Looking for passages")
            visible: Evidence.isAnswering
            indeterminate: true
        }
        AppText {
            Layout.fillWidth: true
            visible: list.count > 0
            text: Evidence.modelStatus
            isSecondary: true
            font.pixelSize: Theme.caption
        }
        GradualList {
            id: list
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: count > 0
            clip: true
            spacing: 12
            model: Evidence.passages
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar {}
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Passages")
            Keys.onReturnPressed: event => {
                if (currentItem)
                    event.modifiers & Qt.ControlModifier ? App.reveal(currentItem.path) : App.open(currentItem.path)
            }
            delegate: PassageCard {
                required property int index
                question: Evidence.question
                place: qsTr("row %1 of %2").arg(index + 1).arg(list.count)
            }
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: list.count === 0
            EmptyState {
                anchors.centerIn: parent
                visible: !Evidence.isAnswering
                symbol: "text.quote"
                title: Evidence.status !== "" ? qsTr("No passage found") : qsTr("Ask a question")
                sentence: Evidence.status !== "" ? Evidence.status
                    : qsTr("You get passages word for word from your own files, each with where it stands. Nothing is made up.")
            }
        }
    }
}
