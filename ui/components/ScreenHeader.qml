import QtQuick
import QtQuick.Layouts
import Tovi

/// The title of a screen, a line below it, and its actions on the right.
RowLayout {
    id: header

    required property string title
    property string subtitle: ""
    default property alias actions: actions.data

    spacing: 12
    ColumnLayout {
        Layout.fillWidth: true
        spacing: 2
        AppText {
            Layout.fillWidth: true
            text: header.title
            font.pixelSize: Theme.title
            isStrong: true
            Accessible.role: Accessible.Heading
        }
        AppText {
            Layout.fillWidth: true
            visible: text !== ""
            text: header.subtitle
            isSecondary: true
            wrapMode: Text.Wrap
            maximumLineCount: 2
            elide: Text.ElideRight
        }
    }
    RowLayout {
        id: actions
        spacing: 8
    }
}
