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
        GradualList {
            id: list
            Layout.fillWidth: true
            Layout.preferredHeight: Math.min(contentHeight, 320)
            clip: true
            model: sheet.rows
            boundsBehavior: Flickable.StopAtBounds
            // Always seen, so that no row is missed.
            ScrollBar.vertical: ScrollBar {
                policy: ScrollBar.AlwaysOn
                visible: size < 1
            }
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Files of the plan")
            delegate: ListRow {
                id: row

                required property var model
                required property int index

                height: 46
                isCard: false
                Accessible.name: model.path
                Accessible.description: qsTr("row %1 of %2").arg(index + 1).arg(list.count)
                RowLayout {
                    anchors.fill: parent
                    anchors.leftMargin: 8
                    anchors.rightMargin: 12
                    spacing: 12
                    AppIcon { symbol: sheet.symbol }
                    ColumnLayout {
                        Layout.fillWidth: true
                        spacing: 0
                        AppText {
                            Layout.fillWidth: true
                            text: Format.path(row.model.path)
                            elide: Text.ElideMiddle
                        }
                        AppText {
                            Layout.fillWidth: true
                            visible: text !== ""
                            text: sheet.noteOf(row.model)
                            isSecondary: true
                            font.pixelSize: Theme.caption
                        }
                    }
                    AppText {
                        text: Format.size(row.model.size)
                        isSecondary: true
                    }
                }
            }
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
