pragma Singleton

import QtQuick

/// Colours, spacing, type and motion. What is not read-only is set by the window.
QtObject {
    id: theme

    property string choice: "minimal"
    property string appearance: "light"
    property bool highContrast: false
    property bool reducedMotion: false

    readonly property SystemPalette system: SystemPalette {}
    property bool isSystemDark: system.window.hslLightness < 0.5
    readonly property bool isDark: choice === "midnight" || appearance === "dark"
        || (appearance === "system" && isSystemDark)
    readonly property var colors: choice === "lilac" ? (isDark ? darkLilac : lilac) : isDark ? dark : minimal

    readonly property color background: colors.background
    readonly property color surface: colors.surface
    readonly property color raised: colors.raised
    readonly property color sidebar: colors.sidebar
    readonly property color selected: colors.selected
    readonly property color text: colors.text
    readonly property color secondaryText: highContrast ? colors.text : colors.secondaryText
    readonly property color disabled: colors.disabled
    readonly property color border: highContrast ? colors.text : colors.border
    readonly property color outline: highContrast ? colors.text : colors.outline
    readonly property color accent: colors.accent
    readonly property color accentInk: colors.accentInk
    readonly property color accentText: colors.accentText
    readonly property color danger: colors.danger
    readonly property color dangerInk: colors.dangerInk
    readonly property color dangerBackground: colors.dangerBackground
    readonly property color warning: colors.warning
    readonly property color warningBackground: colors.warningBackground
    readonly property color success: colors.success
    readonly property color successBackground: colors.successBackground
    readonly property color hover: Qt.alpha(accent, 0.10)
    readonly property color shade: isDark ? "#B0000000" : "#66101218"
    readonly property var hues: isDark
        ? ["#8FB2FF", "#C3A6FF", "#7FD69B", "#F2A65A", "#FF8FC0", "#5FD0DC", "#A9B2C3"]
        : ["#2F5FD0", "#6B3FC4", "#1B6E3C", "#B35C00", "#B3266B", "#0F7383", "#6B6B75"]
    // The theme's own colour comes first.
    readonly property var chart: choice === "lilac" ? [hues[1], hues[0]].concat(hues.slice(2)) : hues

    readonly property int rowRadius: 6
    readonly property int controlRadius: 8
    readonly property int cardRadius: 12
    readonly property int sheetRadius: 16
    readonly property int rowHeight: Math.max(34, Math.ceil(metrics.height) + 16)
    readonly property int compactRowHeight: Math.max(28, Math.ceil(metrics.height) + 10)
    readonly property int controlHeight: Math.max(32, Math.ceil(metrics.height) + 14)

    // Type follows the system's font size; the names are the roles of a text.
    readonly property FontMetrics metrics: FontMetrics {}
    readonly property real scale: Math.max(1, metrics.font.pixelSize > 0 ? metrics.font.pixelSize / 13
                                                                        : metrics.font.pointSize / 10)
    readonly property int caption: Math.round(12 * scale)
    readonly property int body: Math.round(14 * scale)
    readonly property int subtitle: Math.round(16 * scale)
    readonly property int heading: Math.round(18 * scale)
    readonly property int title: Math.round(22 * scale)
    readonly property int display: Math.round(28 * scale)

    readonly property int fast: reducedMotion ? 0 : 120
    readonly property int slow: reducedMotion ? 0 : 200

    readonly property var minimal: ({
        background: "#F7F7F8", surface: "#FFFFFF", raised: "#FFFFFF", sidebar: "#EFEFF2",
        selected: "#DCE6FB", text: "#1B1B1F", secondaryText: "#55555F", disabled: "#8C8C96",
        border: "#D9D9E0", outline: "#7A7A86", accent: "#2F5FD0", accentInk: "#FFFFFF",
        accentText: "#2450B8", danger: "#B3261E", dangerInk: "#FFFFFF", dangerBackground: "#FCE9E7",
        warning: "#8A5300", warningBackground: "#FFF1D6", success: "#1B6E3C",
        successBackground: "#E3F4E8"
    })
    readonly property var lilac: ({
        background: "#F6F2FB", surface: "#FFFFFF", raised: "#FFFFFF", sidebar: "#ECE4F7",
        selected: "#E0D2F7", text: "#221A2E", secondaryText: "#5A4F6B", disabled: "#91869F",
        border: "#DACEE9", outline: "#776889", accent: "#6B3FC4", accentInk: "#FFFFFF",
        accentText: "#5A30AE", danger: "#B3261E", dangerInk: "#FFFFFF", dangerBackground: "#FBE7E8",
        warning: "#854F00", warningBackground: "#FFF0D6", success: "#1A6A3A",
        successBackground: "#E3F3E8"
    })
    readonly property var dark: ({
        background: "#0F1218", surface: "#171B24", raised: "#1F2530", sidebar: "#12161E",
        selected: "#2A3A5E", text: "#ECEFF6", secondaryText: "#A9B2C3", disabled: "#6C7689",
        border: "#2B3342", outline: "#7F8BA5", accent: "#8FB2FF", accentInk: "#0B1530",
        accentText: "#9DBBFF", danger: "#FF9A92", dangerInk: "#3A0906", dangerBackground: "#3A1D1F",
        warning: "#F2C066", warningBackground: "#38290F", success: "#7FD69B",
        successBackground: "#15301F"
    })
    readonly property var darkLilac: Object.assign({}, dark, {
        selected: "#3A2F5E", accent: "#C3A6FF", accentText: "#C3A6FF"
    })
}
