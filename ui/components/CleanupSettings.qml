import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// Which folders are looked through, and when.
Flickable {
    contentHeight: group.height
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    ScrollBar.vertical: ScrollBar {}

    SettingsGroup {
        id: group
        x: LayoutMirroring.enabled ? parent.width - width : 0
        width: Math.min(parent.width, 760)
        height: implicitHeight
        title: qsTr("Looking for what can be cleaned up")
        SettingsSwitch {
            Layout.fillWidth: true
            text: qsTr("Look again by itself; nothing is moved without your review")
            checked: Cleanup.automaticRefresh
            onToggled: Cleanup.automaticRefresh = checked
        }
        SettingsChoice {
            Layout.fillWidth: true
            enabled: Cleanup.automaticRefresh
            label: qsTr("How often")
            options: [
                { value: "6", text: qsTr("Every 6 hours") },
                { value: "24", text: qsTr("Every day") },
                { value: "168", text: qsTr("Every week") }
            ]
            current: String(Cleanup.refreshHours)
            onChosen: value => Cleanup.refreshHours = Number(value)
        }
        AppText { text: qsTr("Where") }
        Flow {
            Layout.fillWidth: true
            spacing: 8
            FilterButton {
                text: qsTr("All connected folders")
                isCurrent: Cleanup.folder === ""
                onClicked: Cleanup.folder = ""
            }
            Repeater {
                model: App.folders.roots
                FilterButton {
                    required property string path
                    text: Format.path(path)
                    symbol: "folder"
                    isCurrent: Cleanup.folder === path
                    onClicked: Cleanup.folder = path
                }
            }
        }
    }
}
