import QtQuick
import QtQuick.Layouts
import Tovi

/// A card with a heading.
Card {
    id: group

    required property string title
    default property alias content: column.data

    /// Whether every one of the words stands somewhere in the group.
    function has(words) {
        if (words === "")
            return true
        const said = textOf(column).toLowerCase()
        return words.toLowerCase().split(/\s+/).every(word => said.includes(word))
    }
    function textOf(item) {
        let text = item.text || ""
        for (let at = 0; at < item.children.length; ++at)
            text += " " + textOf(item.children[at])
        return text
    }

    implicitHeight: column.implicitHeight + 40

    ColumnLayout {
        id: column
        anchors.fill: parent
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
