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

    signal undoWanted(string receipt)

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
            required property var date
            required property var firstPaths
            required property string symbol
            required property int count
            required property int restoredCount
            required property bool undone
            required property bool canUndo
            required property string error

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
                        text: Format.dateTime(receipt.date) + "  ·  "
                            + (receipt.undone ? qsTr("taken back")
                               : receipt.restoredCount > 0
                                 ? qsTr("%1 of %2 taken back").arg(receipt.restoredCount).arg(receipt.count)
                                 : Format.counted(receipt.count, qsTr("item"), qsTr("items")))
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
                        visible: receipt.count > receipt.firstPaths.length
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
                    visible: receipt.canUndo
                    text: qsTr("Undo")
                    symbol: "arrow.uturn.backward"
                    onClicked: receipts.undoWanted(receipt.id)
                }
            }
        }
    }
    EmptyState {
        anchors.centerIn: parent
        visible: list.count === 0
        symbol: "clock"
        title: qsTr("Nothing was changed yet")
        sentence: receipts.emptySentence
    }
}
