import QtQuick
import QtQuick.Layouts
import Tovi

/// Every file of a receipt.
Sheet {
    id: sheet

    /// What makes the changes and keeps their receipts.
    required property var keeper
    property string symbol: ""
    property string summary: ""

    function show(receipt, heading, about, icon) {
        title = heading
        summary = about
        symbol = icon
        keeper.showReceipt(receipt)
        open()
    }

    first: close

    ColumnLayout {
        width: parent.width
        spacing: 16
        AppText {
            Layout.fillWidth: true
            text: sheet.title
            font.pixelSize: Theme.heading
            isStrong: true
            Accessible.role: Accessible.Heading
        }
        AppText {
            Layout.fillWidth: true
            text: sheet.summary
            isSecondary: true
        }
        FileLines {
            Layout.fillWidth: true
            label: sheet.title
            model: sheet.keeper.receiptFiles
            symbol: sheet.symbol
            noteOf: file => file.isRestored ? qsTr("taken back")
                : file.newName !== "" ? qsTr("became %1").arg(file.newName) : ""
        }
        ActionButton {
            id: close
            Layout.alignment: Qt.AlignRight
            text: qsTr("Close")
            onClicked: sheet.close()
        }
    }
}
