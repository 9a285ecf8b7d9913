import QtQuick
import Qt.labs.platform as Platform
import Tovi.Models

/// The icon in the tray and its menu. Made once something shows it.
Platform.SystemTrayIcon {
    id: tray

    /// A file name as a menu shows it: one line, not too long, "_" not taken for the mark of a key.
    function label(name) {
        const line = name.replace(/[\u0000-\u001f\u007f\u2028\u2029]/g, " ")
        const letters = Array.from(line)
        const shown = letters.length <= 60 ? line
            : letters.slice(0, 29).join("") + "…" + letters.slice(-30).join("")
        return "&" + shown.replace(/_/g, "__") // Qt makes "_" of the first "&", and changes no other
    }

    visible: true
    tooltip: "Tovi"
    icon.name: "app.ardeno.Tovi"
    icon.source: "qrc:/qt/qml/Tovi/icons/tovi.svg"
    onActivated: reason => {
        if (reason !== Platform.SystemTrayIcon.Context)
            Tray.windowRequested()
    }

    menu: Platform.Menu {
        id: menu

        onAboutToShow: Tray.refresh()

        Platform.MenuItem {
            text: qsTr("No downloads yet")
            enabled: false
            visible: Tray.latest.count === 0
        }
        Platform.MenuSeparator {}
        Platform.MenuItem {
            text: qsTr("Open window")
            onTriggered: Tray.windowRequested()
        }
        Platform.MenuItem {
            text: qsTr("Quick search")
            onTriggered: Tray.quickSearchRequested()
        }
        Platform.MenuItem {
            text: App.scan.isPaused ? qsTr("Resume indexing") : qsTr("Pause indexing")
            enabled: App.folders.roots.count > 0
            onTriggered: App.scan.pauseIndexing()
        }
        Platform.MenuSeparator {}
        Platform.MenuItem {
            text: qsTr("Quit")
            onTriggered: Qt.quit()
        }
    }

    readonly property Instantiator downloads: Instantiator {
        model: Tray.latest
        delegate: Platform.MenuItem {
            required property string path
            required property string name
            text: tray.label(name)
            onTriggered: {
                if (!App.open(path))
                    Tray.windowRequested()
            }
        }
        onObjectAdded: (index, item) => menu.insertItem(index, item)
        onObjectRemoved: (index, item) => menu.removeItem(item)
    }
}
