import QtQuick
import Tovi

/// The title of a column, which sorts by it where the rows can be sorted.
Pressable {
    id: header

    required property string column
    /// Has `sortColumn`, `isSortDescending` and `sortBy(column)`; null where the order is fixed.
    property var sorter: null
    property bool isAtEnd: false
    readonly property bool isSorted: sorter !== null && sorter.sortColumn === column

    height: 30
    padding: 0
    enabled: sorter !== null
    focusPolicy: sorter ? Qt.StrongFocus : Qt.NoFocus
    Accessible.role: Accessible.ColumnHeader
    Accessible.name: text
    Accessible.description: !isSorted ? "" : sorter.isSortDescending ? qsTr("sorted, descending") : qsTr("sorted, ascending")
    onClicked: sorter.sortBy(column)

    background: Rectangle {
        radius: Theme.rowRadius
        color: header.hovered ? Theme.hover : "transparent"
        FocusRing {
            control: header
            anchors.margins: 0
            radius: Theme.rowRadius
        }
    }
    contentItem: Item {
        Row {
            readonly property bool isRight: header.isAtEnd !== header.mirrored
            x: isRight ? parent.width - width : 0
            height: parent.height
            spacing: 4
            layoutDirection: header.mirrored ? Qt.RightToLeft : Qt.LeftToRight
            AppText {
                height: parent.height
                verticalAlignment: Text.AlignVCenter
                text: header.text
                font.pixelSize: Theme.caption
                isSecondary: !header.isSorted
                isStrong: true
                Accessible.ignored: true
            }
            AppIcon {
                visible: header.isSorted
                anchors.verticalCenter: parent.verticalCenter
                symbol: !header.isSorted ? "" : header.sorter.isSortDescending ? "chevron.down" : "chevron.up"
                extent: 12
                color: Theme.text
            }
        }
    }
}
