import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// Every screen and command by its name; what is no command is an instruction for the chosen files
/// or a phrase to search.
Sheet {
    id: sheet

    /// Each with `text`, `symbol` and `run`.
    property var commands: []
    readonly property string wanted: field.text.trim().toLowerCase()
    readonly property var matching: {
        const found = commands.filter(command => command.text.toLowerCase().includes(wanted))
        if (wanted === "")
            return found
        return found.concat([
            { text: qsTr("Search for “%1”").arg(field.text.trim()), symbol: "magnifyingglass",
              run: () => searchFor(field.text.trim()) },
            { text: qsTr("Plan: %1").arg(field.text.trim()), symbol: "checkmark.circle",
              run: () => App.planAgent(field.text) }
        ])
    }

    function searchFor(phrase) {
        App.search.query = phrase
        App.search.search(phrase)
        App.section = "search"
    }
    function runCurrent() {
        const command = matching[list.currentIndex]
        if (!command)
            return
        close()
        command.run()
    }

    title: qsTr("Commands")
    y: 80
    padding: 12
    first: field
    visible: App.showCommandPalette
    onClosed: App.showCommandPalette = false
    onAboutToShow: {
        field.text = ""
        list.currentIndex = 0
    }

    ColumnLayout {
        width: parent.width
        spacing: 8
        InputField {
            id: field
            Layout.fillWidth: true
            implicitHeight: 44
            label: qsTr("Command, phrase or instruction")
            placeholderText: qsTr("Go to, search, or “trash selected”")
            symbol: "magnifyingglass"
            onTextChanged: list.currentIndex = 0
            onAccepted: sheet.runCurrent()
            Keys.onUpPressed: list.decrementCurrentIndex()
            Keys.onDownPressed: list.incrementCurrentIndex()
        }
        GradualList {
            id: list
            Layout.fillWidth: true
            Layout.preferredHeight: Math.min(count, 8) * Theme.rowHeight
            clip: true
            keyNavigationEnabled: false
            model: sheet.matching
            boundsBehavior: Flickable.StopAtBounds
            Accessible.role: Accessible.List
            Accessible.name: sheet.title
            delegate: NavigationRow {
                required property var modelData
                required property int index
                width: ListView.view.width
                text: modelData.text
                symbol: modelData.symbol
                isCurrent: ListView.isCurrentItem
                focusPolicy: Qt.NoFocus
                onClicked: {
                    list.currentIndex = index
                    sheet.runCurrent()
                }
            }
        }
    }
}
