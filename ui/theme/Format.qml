pragma Singleton

import QtQuick

/// Sizes, dates and counts as people read them, in the user's language.
QtObject {
    /// The folder that "~" stands for; set by the window.
    property string home: ""

    function path(value) {
        return home !== "" && (value + "/").startsWith(home + "/") ? "~" + value.substring(home.length) : value
    }

    function size(bytes) {
        return Qt.locale().formattedDataSize(bytes, bytes < 1000 ? 0 : 1, Locale.DataSizeSIFormat)
    }

    function count(number) {
        return Number(number).toLocaleString(Qt.locale(), "f", 0)
    }

    /// "1 file", "1,204 files"; `many` is the plural of `one`.
    function counted(number, one, many) {
        return count(number) + " " + (number === 1 ? one : many)
    }

    function date(value) {
        return value ? Qt.formatDate(value, Qt.locale().dateFormat(Locale.ShortFormat)) : ""
    }

    function dateTime(value) {
        return value ? Qt.formatDateTime(value, Qt.locale().dateTimeFormat(Locale.ShortFormat)) : ""
    }

    function fileName(path) {
        return path.substring(path.lastIndexOf("/") + 1)
    }
}
