import QtQuick

/// Shows one screen at a time. The next one is made in short steps, during which the one before it
/// stays, and is drawn before that one is taken apart.
FocusScope {
    id: stage

    /// The file of the wanted screen, from the folder above.
    required property string screen
    readonly property Item item: shown.item
    /// What is shown is what is wanted.
    readonly property bool isSettled: shown.screen === screen

    signal loaded(Item item)

    /// Makes the wanted screen at once, for someone who types on without waiting.
    function finish() {
        for (let made = 0; made < 2 && !isSettled; ++made)
            next.asynchronous = false
    }

    property Loader shown: first
    readonly property Loader next: shown === first ? second : first

    // One that is being made is not given up halfway, where its parts would miss each other.
    function load() {
        if (next.status === Loader.Loading || shown.screen === screen)
            return
        next.screen = ""
        next.asynchronous = item !== null
        next.screen = screen
    }
    Timer {
        id: quiet
        interval: 300
        onTriggered: if (stage.isSettled) stage.next.screen = ""
    }
    onScreenChanged: load()
    Component.onCompleted: load()

    component Place: Loader {
        property string screen: ""
        anchors.fill: parent
        visible: stage.shown === this
        source: screen ? "../" + screen : ""
        onLoaded: {
            stage.loaded(item)
            stage.shown = this
            focus = true
            item.focus = true
            quiet.restart()
            stage.load()
        }
    }
    Place { id: first }
    Place { id: second }
}
