import QtQuick

/// Something that is loaded when it is wanted for the first time, and stays.
Loader {
    property bool isWanted: false

    function get() {
        active = true
        return item
    }

    active: false
    onIsWantedChanged: if (isWanted) active = true
}
