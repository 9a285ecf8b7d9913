import QtQuick
import QtQuick.Layouts

/// What belongs together in a group; vanishes with other words than those it is filtered by.
ColumnLayout {
    required property SettingsGroup group

    Layout.fillWidth: true
    spacing: 12
    visible: group.shows(this)
}
