import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// Settings, which apply at once.
FocusScope {
    id: screen

    readonly property string title: qsTr("Settings")

    function systemOr(isOn) {
        return [
            { value: "system", text: isOn ? qsTr("As the system (on)") : qsTr("As the system (off)") },
            { value: "on", text: qsTr("On") },
            { value: "off", text: qsTr("Off") }
        ]
    }

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
                subtitle: qsTr("Every change applies at once")
                InputField {
                    id: field
                    focus: true
                    Layout.preferredWidth: 240
                    label: qsTr("Find a setting")
                    placeholderText: label
                    symbol: "magnifyingglass"
                    Keys.onEscapePressed: text = ""
                }
            }
            EmptyState {
                Layout.alignment: Qt.AlignHCenter
                Layout.topMargin: 48
                visible: [folders, reading, quickSearch, desktop, appearance].every(group => !group.isFound)
                symbol: "magnifyingglass"
                title: qsTr("No setting of these words")
                action: qsTr("Show all")
                onActed: field.text = ""
            }

            SettingsGroup {
                id: folders
                Layout.fillWidth: true
                visible: isFound
                filter: field.text
                title: qsTr("Connected folders")
                Repeater {
                    model: App.folders.roots
                    SettingsRow {
                        id: root
                        required property string path
                        required property string name
                        required property bool available
                        required property string freshness
                        required property date freshSince
                        required property string freshnessReason
                        group: folders
                        RowLayout {
                            Layout.fillWidth: true
                            spacing: 12
                            AppIcon { symbol: "folder" }
                            ColumnLayout {
                                Layout.fillWidth: true
                                spacing: 0
                                AppText {
                                    Layout.fillWidth: true
                                    text: root.name
                                    isStrong: true
                                }
                                AppText {
                                    Layout.fillWidth: true
                                    text: root.available ? Format.path(root.path) : qsTr("Not available now: %1").arg(Format.path(root.path))
                                    elide: Text.ElideMiddle
                                    isSecondary: true
                                    font.pixelSize: Theme.caption
                                }
                                AppText {
                                    Layout.fillWidth: true
                                    text: root.freshness === "live" ? qsTr("Changes are noticed at once.")
                                        : root.freshness === "periodic" ? qsTr("Scanned every five minutes. %1").arg(root.freshnessReason)
                                        : qsTr("Changes are not noticed since %1. %2").arg(Format.dateTime(root.freshSince)).arg(root.freshnessReason)
                                    wrapMode: Text.Wrap
                                    isSecondary: true
                                    font.pixelSize: Theme.caption
                                }
                            }
                            ActionButton {
                                text: qsTr("Disconnect")
                                onClicked: App.removeRoot(root.path)
                                Accessible.name: qsTr("Disconnect %1").arg(root.name)
                            }
                        }
                    }
                }
                SettingsRow {
                    group: folders
                    ActionButton {
                        text: qsTr("Add folder")
                        symbol: "folder.badge.plus"
                        isPrimary: true
                        onClicked: App.folders.presentFolderPicker()
                    }
                }
            }

            SettingsGroup {
                id: reading
                Layout.fillWidth: true
                visible: isFound
                filter: field.text
                title: qsTr("What is read")
                SettingsRow {
                    group: reading
                    SettingsSwitch {
                        Layout.fillWidth: true
                        text: qsTr("Search text inside source code and configuration files")
                        checked: App.settings.developerMode
                        onToggled: App.settings.developerMode = checked
                    }
                }
                SettingsRow {
                    group: reading
                    AppText { text: qsTr("Names left out, one pattern on a line") }
                    ScrollView {
                        Layout.fillWidth: true
                        Layout.preferredHeight: 150
                        TextArea {
                            id: patterns
                            text: App.settings.exclusions
                            font.family: "monospace"
                            font.pixelSize: Theme.body
                            color: Theme.text
                            selectionColor: Theme.accent
                            selectedTextColor: Theme.accentInk
                            selectByMouse: true
                            Accessible.name: qsTr("Names left out")
                            Keys.onTabPressed: nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
                            Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
                            background: Rectangle {
                                radius: Theme.controlRadius
                                color: Theme.background
                                border.width: patterns.activeFocus ? 2 : 1
                                border.color: patterns.activeFocus ? Theme.accent : Theme.outline
                            }
                        }
                    }
                    ActionButton {
                        id: apply
                        text: qsTr("Apply and scan again")
                        enabled: patterns.text !== App.settings.exclusions
                        onClicked: App.settings.exclusions = patterns.text
                    }
                }
            }

            ShortcutSettings {
                id: quickSearch
                Layout.fillWidth: true
                visible: isFound
                filter: field.text
            }
            DesktopSettingsGroup {
                id: desktop
                Layout.fillWidth: true
                visible: isFound
                filter: field.text
            }

            SettingsGroup {
                id: appearance
                Layout.fillWidth: true
                visible: isFound
                filter: field.text
                title: qsTr("Appearance")
                SettingsRow {
                    group: appearance
                    SettingsChoice {
                        Layout.fillWidth: true
                        label: qsTr("Theme")
                        options: [
                            { value: "minimal", text: qsTr("Minimal") },
                            { value: "lilac", text: qsTr("Lilac") },
                            { value: "midnight", text: qsTr("Midnight") }
                        ]
                        current: App.settings.themeChoice
                        onChosen: value => App.settings.themeChoice = value
                    }
                }
                SettingsRow {
                    group: appearance
                    SettingsChoice {
                        Layout.fillWidth: true
                        label: qsTr("Light or dark")
                        options: [
                            { value: "light", text: qsTr("Light") },
                            { value: "dark", text: qsTr("Dark") },
                            { value: "system", text: Theme.isSystemDark ? qsTr("As the system (dark)") : qsTr("As the system (light)") }
                        ]
                        current: App.settings.appearance
                        onChosen: value => App.settings.appearance = value
                    }
                }
                SettingsRow {
                    group: appearance
                    SettingsChoice {
                        Layout.fillWidth: true
                        label: qsTr("More contrast")
                        options: screen.systemOr(SystemAppearance.hasHighContrast)
                        current: Desktop.moreContrast
                        onChosen: value => Desktop.moreContrast = value
                    }
                }
                SettingsRow {
                    group: appearance
                    SettingsChoice {
                        Layout.fillWidth: true
                        label: qsTr("Less motion")
                        options: screen.systemOr(SystemAppearance.hasReducedMotion)
                        current: Desktop.lessMotion
                        onChosen: value => Desktop.lessMotion = value
                    }
                }
            }
        }
    }
}
