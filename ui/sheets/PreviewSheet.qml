import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// A large look at the current file of a table; the arrow keys go on to its neighbours.
Sheet {
    id: sheet

    required property Item owner // the FileTable, whose type holds this one
    readonly property string path: owner.currentPath
    readonly property var file: owner.currentFile

    title: qsTr("Preview of %1").arg(Format.fileName(path))
    width: parent.width - 96
    height: parent.height - 64
    padding: 20
    first: keys
    onPathChanged: if (path === "") close()

    ColumnLayout {
        anchors.fill: parent
        spacing: 12
        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 2
                AppText {
                    Layout.fillWidth: true
                    text: Format.fileName(sheet.path)
                    elide: Text.ElideMiddle
                    font.pixelSize: Theme.heading
                    isStrong: true
                    Accessible.role: Accessible.Heading
                }
                AppText {
                    Layout.fillWidth: true
                    text: sheet.file ? [sheet.file.kindTitle, Format.size(sheet.file.size), Format.dateTime(sheet.file.modifiedAt),
                                        Format.path(sheet.file.folder)].join("  ·  ") : ""
                    elide: Text.ElideMiddle
                    isSecondary: true
                }
            }
            ActionButton {
                text: qsTr("Open")
                isPrimary: true
                onClicked: App.open(sheet.path)
            }
            IconButton {
                symbol: "xmark"
                label: qsTr("Close")
                onClicked: sheet.close()
            }
        }
        FocusScope {
            id: keys
            Layout.fillWidth: true
            Layout.fillHeight: true
            readonly property var passages: sheet.visible && Preview.path === sheet.path ? Preview.passages : []
            readonly property bool showsPicture: picture.isDrawable && !picture.hasFailed || passages.length === 0
            function turn(pages) {
                text.contentY += pages * (text.height - Theme.rowHeight)
                text.returnToBounds()
            }
            activeFocusOnTab: true
            Accessible.role: Accessible.Pane
            Accessible.name: sheet.title
            Accessible.description: qsTr("The arrow keys show the next file, Page Up and Page Down turn its pages, Space closes")
            Keys.onPressed: event => {
                event.accepted = true
                switch (event.key) {
                case Qt.Key_Space: return sheet.close()
                case Qt.Key_Up:
                case Qt.Key_Left: return sheet.owner.move(-1, Qt.NoModifier)
                case Qt.Key_Down:
                case Qt.Key_Right: return sheet.owner.move(1, Qt.NoModifier)
                case Qt.Key_PageUp: return turn(-1)
                case Qt.Key_PageDown: return turn(1)
                }
                event.accepted = false
            }
            Rectangle {
                anchors.fill: parent
                radius: Theme.controlRadius
                color: Theme.background
            }
            FilePicture {
                id: picture
                anchors.fill: parent
                anchors.margins: 12
                visible: keys.showsPicture
                path: sheet.opened ? sheet.path : ""
                kind: sheet.file ? sheet.file.kind : ""
                symbol: sheet.file ? sheet.file.symbol : "doc"
                version: sheet.file ? sheet.file.modifiedAt : 0
                side: 1280
            }
            AppText {
                anchors.centerIn: parent
                anchors.verticalCenterOffset: 56
                visible: keys.showsPicture && (picture.hasFailed || !picture.isDrawable)
                text: qsTr("No preview of this file")
                isSecondary: true
            }
            GradualList {
                id: text
                anchors.fill: parent
                anchors.margins: 20
                visible: !keys.showsPicture
                rowHeight: 120
                spacing: 5 // as between the lines
                boundsBehavior: Flickable.StopAtBounds
                clip: true
                ScrollBar.vertical: ScrollBar {}
                model: keys.passages
                delegate: MarkedText {
                    required property string modelData
                    width: ListView.view.width
                    excerpt: modelData
                    lineHeight: 1.3
                }
            }
            FocusRing {
                control: keys
                visible: keys.activeFocus
            }
        }
    }
}
