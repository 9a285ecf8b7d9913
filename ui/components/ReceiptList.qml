import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi

/// What was changed, newest first, each with its undo.
FocusScope {
    id: receipts

    required property string title
    required property var changes
    required property string emptySentence
    /// What makes the changes and keeps their receipts.
    required property var keeper

    GradualList {
        id: list
        anchors.fill: parent
        visible: count > 0
        clip: true
        spacing: 8
        focus: true
        model: receipts.changes
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.vertical: ScrollBar {}
        Accessible.role: Accessible.List
        Accessible.name: receipts.title
        delegate: ListRow {
            id: receipt

            required property int index
            required property string id
            required property string title
            required property double date
            required property var firstPaths
            required property string symbol
            required property int count
            required property int restoredCount
            required property bool undone
            required property bool canUndo
            required property string error
            readonly property string summary: Format.dateTime(date) + "  ·  "
                + (undone ? qsTr("taken back")
                   : restoredCount > 0 ? qsTr("%1 of %2 taken back").arg(restoredCount).arg(count)
                   : Format.counted(count, qsTr("item"), qsTr("items")))

            height: line.implicitHeight + 24
            Accessible.name: receipt.title
            Accessible.description: qsTr("row %1 of %2").arg(index + 1).arg(list.count)

            RowLayout {
                id: line
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                anchors.margins: 16
                spacing: 12
                AppIcon {
                    Layout.alignment: Qt.AlignTop
                    symbol: receipt.symbol
                }
                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 2
                    AppText {
                        Layout.fillWidth: true
                        text: receipt.title
                        isStrong: true
                    }
                    AppText {
                        Layout.fillWidth: true
                        text: receipt.summary
                        isSecondary: true
                    }
                    Repeater {
                        model: receipt.firstPaths
                        AppText {
                            required property string modelData
                            Layout.fillWidth: true
                            text: Format.path(modelData)
                            elide: Text.ElideMiddle
                            isSecondary: true
                            font.pixelSize: Theme.caption
                        }
                    }
                    AppText {
                        visible: all.visible
                        text: qsTr("and %1 more").arg(Format.count(receipt.count - receipt.firstPaths.length))
                        isSecondary: true
                        font.pixelSize: Theme.caption
                    }
                    AppText {
                        Layout.fillWidth: true
                        visible: receipt.error !== ""
                        text: receipt.error
                        color: Theme.danger
                        wrapMode: Text.Wrap
                    }
                }
                ActionButton {
                    id: all
                    visible: receipt.count > receipt.firstPaths.length
                    text: qsTr("Show all")
                    Accessible.description: receipt.title
                    onClicked: sheet.use(sheet => sheet.show(receipt.id, receipt.title, receipt.summary, receipt.symbol))
                }
                ActionButton {
                    visible: receipt.canUndo
                    text: qsTr("Undo")
                    symbol: "arrow.uturn.backward"
                    onClicked: receipts.keeper.undo(receipt.id)
                }
            }
        }
    }
    OnDemand {
        id: sheet
        sourceComponent: ReceiptSheet { keeper: receipts.keeper }
    }
    EmptyState {
        anchors.centerIn: parent
        visible: list.count === 0
        symbol: "clock"
        title: qsTr("Nothing was changed yet")
        sentence: receipts.emptySentence
    }
}
