import QtQuick
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// The shortcut of the quick search panel, and whether it really is registered.
SettingsGroup {
    id: quickSearch

    title: qsTr("Quick search")
    SettingsRow {
        group: quickSearch
        SettingsChoice {
            Layout.fillWidth: true
            label: qsTr("Shortcut")
            options: [
                { value: "commandShiftSpace", text: qsTr("Super+Shift+Space") },
                { value: "controlOptionSpace", text: qsTr("Ctrl+Alt+Space") },
                { value: "disabled", text: qsTr("None") }
            ]
            current: App.settings.shortcutChoice
            onChosen: value => App.settings.shortcutChoice = value
        }
        AppText {
            Layout.fillWidth: true
            text: HotKey.message ? HotKey.message
                : HotKey.keys ? qsTr("The shortcut is registered as %1.").arg(HotKey.keys)
                : HotKey.isRegistered ? qsTr("The shortcut is registered.")
                : qsTr("No shortcut is registered.")
            color: HotKey.message ? Theme.danger : Theme.secondaryText
            wrapMode: Text.Wrap
        }
    }
}
