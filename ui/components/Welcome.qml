import QtQuick
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// What someone sees before the first folder is connected, and while it is read.
Item {
    id: welcome

    readonly property bool hasFolders: App.folders.roots.count > 0

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width, 560)
        spacing: 16

        Mark {
            Layout.alignment: Qt.AlignHCenter
            extent: 72
        }
        AppText {
            Layout.alignment: Qt.AlignHCenter
            text: welcome.hasFolders ? App.scan.isIndexing ? qsTr("Reading your files…")
                                                           : qsTr("No files here yet")
                                     : qsTr("Choose a folder to build your private index")
            font.pixelSize: Theme.title
            isStrong: true
        }
        AppText {
            Layout.fillWidth: true
            visible: welcome.hasFolders
            text: App.notices.statusMessage
            horizontalAlignment: Text.AlignHCenter
            isSecondary: true
        }
        Card {
            Layout.fillWidth: true
            visible: !welcome.hasFolders
            implicitHeight: promises.implicitHeight + 40
            Promises {
                id: promises
                anchors.fill: parent
                anchors.margins: 20
            }
        }
        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            visible: !App.scan.isIndexing
            spacing: 8
            ActionButton {
                visible: !welcome.hasFolders
                text: qsTr("Connect your personal files")
                onClicked: App.folders.addHomeFolder()
            }
            ActionButton {
                text: qsTr("Add folder")
                symbol: "folder.badge.plus"
                isPrimary: true
                onClicked: App.folders.presentFolderPicker()
            }
        }
    }
}
