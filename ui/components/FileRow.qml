import QtQuick
import QtQuick.Controls.Basic
import Tovi
import Tovi.Models

/// A file in a `FileTable`.
Item {
    id: row

    required property int index
    required property string path
    required property string name
    required property string folder
    required property string kind
    required property string kindTitle
    required property string symbol
    required property var size
    required property double modifiedAt
    required property var downloadedAt

    required property Item owner // the FileTable, whose type holds this one
    readonly property double date: owner.showsDownloadDate && downloadedAt ? downloadedAt : modifiedAt
    readonly property string sizeText: Format.size(size)
    readonly property string dateText: Format.date(date)
    readonly property string folderText: Format.path(folder)
    readonly property bool isChosen: owner.isChosen(path)
    readonly property string excerpt: owner.phrase !== "" && Excerpts.revision >= 0 ? Excerpts.of(path, owner.phrase) : ""

    function withMarks(excerpt) {
        return excerpt.replace(/<b>/g, "<b><font color=\"" + Theme.accentText + "\">").replace(/<\/b>/g, "</font></b>")
    }

    height: owner.rowHeight
    // A row that waits to be used again is not seen, and not told of.
    property bool isWaiting: false
    ListView.onPooled: isWaiting = true
    ListView.onReused: isWaiting = false

    Accessible.ignored: isWaiting
    Accessible.role: Accessible.ListItem
    Accessible.name: name
    Accessible.description: kindTitle + ", " + sizeText + ", " + dateText + ", " + qsTr("in %1").arg(folderText)
        + ", " + qsTr("row %1 of %2").arg(index + 1).arg(owner.count)
        + (excerpt ? ": " + excerpt.replace(/<[^>]*>/g, "") : "")
    Accessible.selected: isChosen
    Accessible.onPressAction: owner.choose(index, Qt.NoModifier)

    Rectangle {
        anchors.fill: parent
        radius: Theme.rowRadius
        color: row.isChosen ? Theme.selected : hover.hovered ? Theme.hover : "transparent"
        border.width: row.activeFocus ? 2 : 0
        border.color: Theme.accent
    }
    Rectangle {
        visible: row.isChosen
        width: 3
        height: parent.height - 12
        radius: 1.5
        x: row.LayoutMirroring.enabled ? parent.width - 5 : 2
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.accent
    }
    AppIcon {
        id: icon
        anchors.left: parent.left
        anchors.leftMargin: 12
        y: (Theme.rowHeight - height) / 2
        symbol: row.symbol
    }
    TableCell {
        id: sizeCell
        anchors.right: parent.right
        anchors.rightMargin: width > 0 ? 12 : 0
        width: row.owner.sizeWidth
        text: width > 0 ? row.sizeText : ""
        horizontalAlignment: Text.AlignRight
    }
    TableCell {
        id: dateCell
        anchors.right: sizeCell.left
        anchors.rightMargin: 12
        width: row.owner.dateWidth
        text: row.dateText
    }
    TableCell {
        id: kindCell
        anchors.right: dateCell.left
        anchors.rightMargin: width > 0 ? 12 : 0
        width: row.owner.kindWidth
        text: width > 0 ? row.kindTitle : ""
    }
    TableCell {
        id: folderCell
        anchors.right: kindCell.left
        anchors.rightMargin: width > 0 ? 12 : 0
        width: row.owner.folderWidth
        text: width > 0 ? row.folderText : ""
        elide: Text.ElideMiddle
    }
    TableCell {
        anchors.left: icon.right
        anchors.leftMargin: 10
        anchors.right: folderCell.left
        anchors.rightMargin: 12
        text: row.owner.phrase === "" ? row.name : row.withMarks(Excerpts.marked(row.name, row.owner.phrase))
        textFormat: row.owner.phrase === "" ? Text.PlainText : Text.StyledText
        elide: Text.ElideMiddle
        isSecondary: false
    }
    Loader {
        active: row.owner.phrase !== ""
        anchors.left: icon.right
        anchors.leftMargin: 10
        anchors.right: parent.right
        anchors.rightMargin: 12
        y: Theme.rowHeight - 7
        sourceComponent: TableCell {
            height: Theme.caption + 8
            text: row.withMarks(row.excerpt)
            textFormat: Text.StyledText
            font.pixelSize: Theme.caption
        }
    }

    HoverHandler {
        id: hover
        onHoveredChanged: {
            if (!hovered)
                return row.ToolTip.hide()
            row.ToolTip.delay = 900
            row.ToolTip.show(row.path)
        }
    }
    TapHandler {
        acceptedButtons: Qt.LeftButton | Qt.RightButton
        onTapped: (point, button) => row.owner.tap(row.index, button, point.modifiers)
        onDoubleTapped: App.open(row.path)
    }
    DragHandler {
        target: null
        acceptedDevices: PointerDevice.Mouse
        onActiveChanged: if (active) row.owner.drag(row.mapToItem(row.owner, centroid.pressPosition))
    }
    Drag.dragType: Drag.Automatic
    Drag.supportedActions: Qt.CopyAction
}
