import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi

/// What waits for review: every file, what becomes of it, and the one button that does it. The
/// keyboard starts on Cancel.
Sheet {
    id: sheet

    required property string heading
    property string explanation: ""
    property string warning: ""
    property string remark: ""
    /// A list with the roles `path` and `size`.
    required property var rows
    required property string symbol
    /// What is said of a file under its path.
    required property var noteOf
    required property string confirmText
    property string confirmObjectName: ""
    property bool isDanger: true
    property bool isExecuting: false

    signal confirmed
    signal cancelled
    signal stopped

    title: heading
    closePolicy: isExecuting ? Popup.NoAutoClose : Popup.CloseOnEscape
    first: cancel
    onClosed: cancelled()

    ColumnLayout {
        width: parent.width
        spacing: 16
        AppText {
            Layout.fillWidth: true
            text: sheet.heading
            font.pixelSize: Theme.heading
            isStrong: true
            Accessible.role: Accessible.Heading
        }
        AppText {
            Layout.fillWidth: true
            text: sheet.explanation
            visible: text !== ""
            wrapMode: Text.Wrap
            isSecondary: true
        }
        AppText {
            Layout.fillWidth: true
            text: sheet.warning
            visible: text !== ""
            wrapMode: Text.Wrap
            color: Theme.warning
        }
        FileLines {
            Layout.fillWidth: true
            label: qsTr("Files of the plan")
            model: sheet.rows
            symbol: sheet.symbol
            noteOf: sheet.noteOf
        }
        AppText {
            Layout.fillWidth: true
            visible: text !== ""
            text: sheet.remark
            color: Theme.success
            isStrong: true
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: 8
            ActionButton {
                id: cancel
                text: sheet.isExecuting ? qsTr("Stop") : qsTr("Cancel")
                onClicked: sheet.isExecuting ? sheet.stopped() : sheet.cancelled()
            }
            ActionButton {
                objectName: sheet.confirmObjectName
                text: sheet.isExecuting ? qsTr("Working…") : sheet.confirmText
                enabled: !sheet.isExecuting
                isDanger: sheet.isDanger
                isPrimary: !sheet.isDanger
                onClicked: sheet.confirmed()
            }
        }
    }
}
