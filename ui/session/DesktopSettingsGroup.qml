import QtQuick
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// How the program lives on its desktop.
SettingsGroup {
    id: desktop

    title: qsTr("Desktop")
    SettingsRow {
        group: desktop
        SettingsSwitch {
            Layout.fillWidth: true
            text: qsTr("Keep running in the tray when the window closes")
            checked: Desktop.staysInTray
            onToggled: Desktop.staysInTray = checked
        }
        AppText {
            Layout.fillWidth: true
            visible: !Tray.isShown
            text: qsTr("This desktop shows no tray now, so closing the window ends Tovi.")
            isSecondary: true
            wrapMode: Text.Wrap
        }
    }
    SettingsRow {
        group: desktop
        SettingsSwitch {
            Layout.fillWidth: true
            text: qsTr("Tell when long work ends behind other windows")
            checked: Desktop.notifies
            onToggled: Desktop.notifies = checked
        }
    }
    SettingsRow {
        group: desktop
        SettingsSwitch {
            id: search
            Layout.fillWidth: true
            text: qsTr("Let the search of the desktop find files of the index")
            checked: Desktop.answersSystemSearch
            onToggled: Desktop.answersSystemSearch = checked
        }
        AppText {
            Layout.fillWidth: true
            visible: search.checked
            text: qsTr("Choose Tovi among the search results in the settings of the desktop as well. Nothing of the vault is found.")
            isSecondary: true
            wrapMode: Text.Wrap
        }
    }
}
