import QtQuick
import QtQuick.Layouts
import Tovi

/// A card with a heading.
Card {
    id: group

    required property string title
    default property alias content: column.data

    /// Only the rows that have all of these words are shown.
    property string filter: ""
    readonly property bool isFound: filter === "" || hasRow(column.children)

    function hasRow(rows) {
        for (let at = 0; at < rows.length; ++at) {
            if (rows[at].group && shows(rows[at]))
                return true
        }
        return false
    }
    /// Whether every one of the words stands in the row or in the title.
    function shows(row) {
        if (filter === "")
            return true
        const said = (title + textOf(row)).toLowerCase()
        return filter.toLowerCase().split(/\s+/).every(word => said.includes(word))
    }
    function textOf(item) {
        let text = " " + (item.text || "") + " " + (item.label || "")
        for (let at = 0; at < item.children.length; ++at)
            text += textOf(item.children[at])
        return text
    }

    implicitHeight: column.implicitHeight + 40

    ColumnLayout {
        id: column
        anchors.top: parent.top
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.margins: 20
        spacing: 12
        AppText {
            Layout.fillWidth: true
            text: group.title
            font.pixelSize: Theme.subtitle
            isStrong: true
            Accessible.role: Accessible.Heading
        }
    }
}
