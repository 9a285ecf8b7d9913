import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// What reads the user's files, all of it installed on this machine.
FocusScope {
    id: screen

    readonly property string title: qsTr("Models")

    Component.onCompleted: Installed.refresh()

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        spacing: 16

        ScreenHeader {
            Layout.fillWidth: true
            title: screen.title
            subtitle: App.modelStatus
            ActionButton {
                text: qsTr("Look again")
                symbol: "arrow.clockwise"
                onClicked: Installed.refresh()
            }
        }
        Flickable {
            id: area
            Layout.fillWidth: true
            Layout.fillHeight: true
            focus: true
            clip: true
            contentHeight: column.implicitHeight
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar {}
            Keys.onUpPressed: flick(0, 800)
            Keys.onDownPressed: flick(0, -800)

            ColumnLayout {
                id: column
                width: area.width
                spacing: 16
                SettingsGroup {
                    Layout.fillWidth: true
                    title: qsTr("Text recognition in pictures")
                    Chip {
                        text: qsTr("On this machine")
                        symbol: "lock.shield"
                    }
                    AppText {
                        Layout.fillWidth: true
                        text: qsTr("Tesseract reads the words in photos and screenshots, so that they can be searched. Its languages lie in %1; another one is used as soon as it is installed there.").arg(Format.path(Installed.languageFolder))
                        wrapMode: Text.Wrap
                        isSecondary: true
                    }
                    Repeater {
                        model: Installed.languages
                        RowLayout {
                            required property string id
                            required property string name
                            required property var bytes
                            required property bool isUsed
                            Layout.fillWidth: true
                            spacing: 12
                            AppIcon { symbol: "doc.text" }
                            AppText {
                                Layout.preferredWidth: 200
                                text: name
                                isStrong: true
                            }
                            AppText {
                                Layout.fillWidth: true
                                text: id === "osd" ? qsTr("Tells which way up a page is")
                                    : isUsed ? qsTr("Reads text in pictures") : qsTr("Installed, but not used")
                                isSecondary: true
                            }
                            AppText {
                                text: Format.size(bytes)
                                isSecondary: true
                            }
                        }
                    }
                    Statement {
                        visible: Installed.error !== "" || (Installed.hasLoaded && Installed.languages.count === 0)
                        symbol: "exclamationmark.triangle"
                        text: Installed.error !== ""
                            ? qsTr("The languages could not be listed: %1").arg(Installed.error)
                            : qsTr("No language is installed, so text in pictures is not read.")
                    }
                }
                SettingsGroup {
                    Layout.fillWidth: true
                    title: qsTr("Reading PDFs and pictures")
                    Chip {
                        visible: Installed.confinement.length > 0
                        text: Installed.isConfined ? qsTr("Confined") : qsTr("Partly confined")
                        symbol: Installed.isConfined ? "checkmark" : "exclamationmark.triangle"
                    }
                    AppText {
                        Layout.fillWidth: true
                        text: qsTr("Files from elsewhere are decoded in a process of their own, which is handed one open file at a time and nothing else.")
                        wrapMode: Text.Wrap
                        isSecondary: true
                    }
                    AppText {
                        visible: Installed.isLoading && Installed.confinement.length === 0
                        text: qsTr("Asking the process…")
                        isSecondary: true
                    }
                    Repeater {
                        model: Installed.confinement
                        Statement {
                            required property string modelData
                            symbol: "lock.shield"
                            text: modelData
                        }
                    }
                    Statement {
                        visible: Installed.confinementError !== ""
                        symbol: "exclamationmark.triangle"
                        text: qsTr("PDFs and pictures cannot be read now: %1").arg(Installed.confinementError)
                    }
                }
                SettingsGroup {
                    Layout.fillWidth: true
                    title: qsTr("Search and answers")
                    Chip {
                        text: qsTr("On this machine")
                        symbol: "lock.shield"
                    }
                    AppText {
                        Layout.fillWidth: true
                        text: qsTr("Searching compares words, and answers are passages as they stand in your files. No model that writes or compares meaning is installed, and none is needed.")
                        wrapMode: Text.Wrap
                        isSecondary: true
                    }
                }
                SettingsGroup {
                    Layout.fillWidth: true
                    title: qsTr("Look-alike photos")
                    Chip {
                        text: qsTr("On this machine")
                        symbol: "lock.shield"
                    }
                    AppText {
                        Layout.fillWidth: true
                        text: qsTr("Photos are compared by their brightness, edges and colours, computed here and kept in memory only.")
                        wrapMode: Text.Wrap
                        isSecondary: true
                    }
                }
            }
        }
    }
}
