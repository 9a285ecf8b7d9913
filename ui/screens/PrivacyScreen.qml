import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// What is kept, where, and what cannot happen.
FocusScope {
    id: screen

    readonly property string title: qsTr("Privacy")
    property string dataDirectory
    readonly property var summary: App.library.librarySummary

    Flickable {
        anchors.fill: parent
        contentHeight: column.implicitHeight + 48
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        ScrollBar.vertical: ScrollBar {}

        ColumnLayout {
            id: column
            x: screen.LayoutMirroring.enabled ? parent.width - width - 24 : 24
            y: 24
            width: Math.min(parent.width - 48, 760)
            spacing: 16

            ScreenHeader {
                Layout.fillWidth: true
                title: screen.title
                subtitle: qsTr("Nothing leaves this computer")
            }
            SettingsGroup {
                Layout.fillWidth: true
                title: qsTr("Network")
                Statement {
                    symbol: "lock.shield"
                    text: qsTr("Tovi cannot open an internet connection: the system refuses it to this window and to all that reads your files. Only the programs that you open files with keep theirs.")
                }
                Statement {
                    symbol: "hand.raised"
                    text: qsTr("PDFs and pictures are read by a separate process that can open no file and no connection of its own.")
                }
            }
            SettingsGroup {
                Layout.fillWidth: true
                title: qsTr("What is read")
                Repeater {
                    id: roots
                    model: App.folders.roots
                    Statement {
                        required property string path
                        symbol: "folder"
                        text: qsTr("%1 and what lies in it").arg(Format.path(path))
                    }
                }
                Statement {
                    visible: roots.count === 0
                    symbol: "folder"
                    text: qsTr("No folder is connected.")
                }
                Statement {
                    symbol: "xmark"
                    text: qsTr("Never: hidden files, keys and credentials, system folders, and the names left out in Settings, %1.")
                        .arg(App.settings.exclusions.split("\n").filter(name => name.trim() !== "").join(", "))
                }
            }
            SettingsGroup {
                Layout.fillWidth: true
                title: qsTr("What is stored")
                Statement {
                    symbol: "doc.text"
                    text: qsTr("Names, dates, sizes, origins and the readable text of %1, in %2.")
                        .arg(Format.counted(screen.summary.total || 0, qsTr("file"), qsTr("files")))
                        .arg(Format.size(screen.summary.databaseSize || 0))
                }
                Statement {
                    symbol: "folder"
                    text: qsTr("Kept in %1, readable by you alone.").arg(Format.path(screen.dataDirectory))
                }
                ActionButton {
                    text: qsTr("Clear the index…")
                    symbol: "trash"
                    enabled: (screen.summary.total || 0) > 0
                    onClicked: clearSheet.open()
                }
            }
        }
    }

    Sheet {
        id: clearSheet
        title: qsTr("Clear the index")
        first: cancel
        ColumnLayout {
            width: parent.width
            spacing: 16
            AppText {
                text: qsTr("Clear the index of %1?").arg(
                    Format.counted(screen.summary.total || 0, qsTr("file"), qsTr("files")))
                font.pixelSize: Theme.heading
                isStrong: true
            }
            AppText {
                Layout.fillWidth: true
                text: qsTr("Your files stay as they are. What Tovi knows of them is removed, and indexing pauses until you resume it.")
                wrapMode: Text.Wrap
                isSecondary: true
            }
            RowLayout {
                Layout.alignment: Qt.AlignRight
                spacing: 8
                ActionButton {
                    id: cancel
                    text: qsTr("Cancel")
                    onClicked: clearSheet.close()
                }
                ActionButton {
                    text: qsTr("Clear the index")
                    isDanger: true
                    onClicked: {
                        App.resetIndex()
                        clearSheet.close()
                    }
                }
            }
        }
    }
}
