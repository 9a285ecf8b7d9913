import QtQuick
import Tovi
import Tovi.Models

/// Encrypted copies of files, behind a password.
FocusScope {
    id: screen

    readonly property string title: qsTr("Vault")
    readonly property string phase: ["loading", "notCreated", "locked", "unlocked", "unavailable"][Vault.phase]

    Component.onCompleted: Vault.load()

    AppText {
        anchors.centerIn: parent
        visible: screen.phase === "loading"
        text: qsTr("Opening vault…")
        isSecondary: true
    }
    EmptyState {
        anchors.centerIn: parent
        visible: screen.phase === "unavailable"
        symbol: "exclamationmark.triangle"
        title: qsTr("The vault could not be opened")
        sentence: Vault.errorMessage
        action: qsTr("Try again")
        onActed: Vault.load()
    }
    Loader {
        anchors.fill: parent
        focus: true
        sourceComponent: screen.phase === "unlocked" ? contents
            : screen.phase === "locked" || screen.phase === "notCreated" ? door : null
        onLoaded: item.forceActiveFocus()
    }
    Component {
        id: door
        VaultDoor { isNew: screen.phase === "notCreated" }
    }
    Component {
        id: contents
        VaultContents { title: screen.title }
    }
}
