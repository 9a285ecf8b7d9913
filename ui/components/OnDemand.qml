import QtQuick

/// Something that is made in short steps when it is wanted for the first time, and stays.
Loader {
    property bool isWanted: false
    property var waiting: null

    /// Calls `action` with the item, as soon as it is made.
    function use(action) {
        waiting = action
        active = true
        begin()
    }
    function begin() {
        const action = waiting
        if (!item || !action)
            return
        waiting = null
        action(item)
    }

    active: false
    asynchronous: true
    onIsWantedChanged: if (isWanted) active = true
    onLoaded: begin()
}
