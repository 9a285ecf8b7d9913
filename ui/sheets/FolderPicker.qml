import QtQuick
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// Asks for a folder to connect: in the dialog of the desktop, or in a sheet where the desktop has none.
/// One that is offered needs no more than a yes.
Item {
    id: picker

    property bool isChoosing: false

    function ask(title, message, button, directory) {
        sheet.title = title
        sheet.message = message
        sheet.button = button
        sheet.folder = directory
        if (directory)
            sheet.open()
        else
            choose(Format.home)
    }
    function choose(start) {
        isChoosing = true
        sheet.folder = start
        SystemFolderDialog.open(Window.window, sheet.title + " — " + sheet.message, sheet.button, start)
    }
    /// Shown before it is connected, with what that means.
    function approve(folder) {
        isChoosing = false
        sheet.folder = folder
        sheet.open()
    }
    function reject() {
        isChoosing = false
        FolderDialogs.finish("")
    }

    Connections {
        target: SystemFolderDialog
        function onAccepted(folder) { picker.approve(folder) }
        function onRejected() { picker.reject() }
        function onUnavailable() {
            chooser.use(chooser => chooser.ask(sheet.title, sheet.message, sheet.folder, false))
        }
    }
    OnDemand {
        id: chooser
        sourceComponent: ChooserSheet {
            onAccepted: paths => picker.approve(paths[0])
            onRejected: picker.reject()
        }
    }
    Sheet {
        id: sheet

        property string message: ""
        property string button: ""
        property string folder: ""
        property string answer: ""

        first: yes
        onAboutToShow: answer = ""
        onClosed: if (!picker.isChoosing) FolderDialogs.finish(answer)

        ColumnLayout {
            width: parent.width
            spacing: 16
            AppText {
                Layout.fillWidth: true
                text: sheet.title
                wrapMode: Text.Wrap
                font.pixelSize: Theme.heading
                isStrong: true
                Accessible.role: Accessible.Heading
            }
            AppText {
                Layout.fillWidth: true
                text: sheet.message
                wrapMode: Text.Wrap
                isSecondary: true
            }
            Card {
                Layout.fillWidth: true
                implicitHeight: offer.implicitHeight + 32
                color: Theme.background
                ColumnLayout {
                    id: offer
                    anchors.fill: parent
                    anchors.margins: 16
                    spacing: 12
                    Statement {
                        symbol: "folder"
                        text: sheet.folder === Format.home ? qsTr("Your home folder") : Format.path(sheet.folder)
                    }
                    Promises { Layout.fillWidth: true }
                }
            }
            RowLayout {
                Layout.alignment: Qt.AlignRight
                spacing: 8
                ActionButton {
                    text: qsTr("Cancel")
                    onClicked: sheet.close()
                }
                ActionButton {
                    text: qsTr("Another folder…")
                    onClicked: {
                        picker.choose(sheet.folder)
                        sheet.close()
                    }
                }
                ActionButton {
                    id: yes
                    text: sheet.button
                    isPrimary: true
                    onClicked: {
                        sheet.answer = sheet.folder
                        sheet.close()
                    }
                }
            }
        }
    }
}
