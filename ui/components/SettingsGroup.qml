import QtQuick
import QtQuick.Layouts
import Tovi

/// A card with a heading.
Card {
    id: group

    required property string title
    default property alias content: column.data

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
