import QtQuick
import QtQuick.Layouts
import Tovi

/// The keys that work everywhere and those of lists of files.
Sheet {
    id: sheet

    /// A key, then what it does.
    readonly property var keys: [
        "Ctrl+K", qsTr("Commands"),
        "Ctrl+F", qsTr("Search"),
        "Ctrl+,", qsTr("Settings"),
        "Ctrl+Z", qsTr("Undo the last change"),
        "F5", qsTr("Refresh"),
        "F6", qsTr("Sidebar and screen"),
        "F9", qsTr("Hide or show the sidebar"),
        "Alt+Left", qsTr("Back"),
        "Ctrl+W", qsTr("Close the window"),
        "Ctrl+Q", qsTr("Quit"),
        "Space", qsTr("Preview"),
        "Ctrl+Space", qsTr("Choose another file"),
        "Ctrl+A", qsTr("Choose all"),
        "Enter", qsTr("Open"),
        "Ctrl+Enter", qsTr("Show in folder"),
        "F2", qsTr("Rename"),
        "Delete", qsTr("Move to the Trash…"),
        "Shift+F10", qsTr("Menu of the file")
    ]

    title: qsTr("Keys")
    first: closeButton

    ColumnLayout {
        width: parent.width
        spacing: 16
        AppText {
            text: sheet.title
            font.pixelSize: Theme.heading
            isStrong: true
            Accessible.role: Accessible.Heading
        }
        GridLayout {
            Layout.fillWidth: true
            columns: 4
            columnSpacing: 16
            rowSpacing: 8
            Repeater {
                model: sheet.keys
                AppText {
                    required property string modelData
                    required property int index
                    Layout.fillWidth: index % 2 === 1
                    text: modelData
                    isStrong: index % 2 === 0
                    isSecondary: index % 2 === 1
                }
            }
        }
        ActionButton {
            id: closeButton
            Layout.alignment: Qt.AlignRight
            text: qsTr("Close")
            onClicked: sheet.close()
        }
    }
}
