pragma Singleton

import QtQuick

/// Sizes, dates and counts as people read them, in the user's language.
QtObject {
    /// The folder that "~" stands for; set by the window.
    property string home: ""

    readonly property var locale: Qt.locale()
    readonly property string dateFormat: locale.dateFormat(Locale.ShortFormat)
    readonly property string dateTimeFormat: locale.dateTimeFormat(Locale.ShortFormat)

    function path(value) {
        return home !== "" && (value + "/").startsWith(home + "/") ? "~" + value.substring(home.length) : value
    }

    /// The address of a file, as dialogs and other programs take it.
    function address(path) {
        return "file://" + path.split("/").map(encodeURIComponent).join("/")
    }

    function size(bytes) {
        return locale.formattedDataSize(bytes, bytes < 1000 ? 0 : 1, Locale.DataSizeSIFormat)
    }

    function count(number) {
        return Number(number).toLocaleString(locale, "f", 0)
    }

    /// "1 file", "1,204 files"; `many` is the plural of `one`.
    function counted(number, one, many) {
        return count(number) + " " + (number === 1 ? one : many)
    }

    /// A moment in milliseconds since the epoch; nothing for none.
    function date(moment) {
        return Number.isFinite(moment) ? Qt.formatDate(new Date(moment), dateFormat) : ""
    }

    function dateTime(moment) {
        return Number.isFinite(moment) ? Qt.formatDateTime(new Date(moment), dateTimeFormat) : ""
    }

    /// Minutes and seconds.
    function duration(seconds) {
        const whole = Math.max(0, Math.round(seconds))
        return Math.floor(whole / 60) + ":" + String(whole % 60).padStart(2, "0")
    }

    function folder(path) {
        return path.substring(0, path.lastIndexOf("/"))
    }

    function fileName(path) {
        return path.substring(path.lastIndexOf("/") + 1)
    }

    /// A day, week or month by its start, in milliseconds since the epoch.
    function period(start, unit) {
        const day = new Date(Number(start))
        if (unit === "month")
            return day.toLocaleDateString(locale, "MMMM yyyy")
        const written = day.toLocaleDateString(locale, "d MMMM yyyy")
        if (unit === "week")
            return qsTr("Week of %1").arg(written)
        const today = new Date()
        today.setHours(0, 0, 0, 0)
        const days = Math.round((today - day) / 86400000)
        return days === 0 ? qsTr("Today") : days === 1 ? qsTr("Yesterday")
            : day.toLocaleDateString(locale, "ddd d MMMM yyyy")
    }
}
