import QtQuick
import QtQuick.Layouts
import Tovi

/// A line of a list of groups, with a short detail at its end.
NavigationRow {
    id: row

    required property string detail
    /// Whether Tab leads here: one row of a list, from which the arrow keys go on.
    property bool isEntry: false

    rightPadding: 12
    focusPolicy: isEntry || activeFocus ? Qt.StrongFocus : Qt.ClickFocus
    contentItem: RowLayout {
        spacing: 10
        AppIcon {
            symbol: row.symbol
            color: row.isCurrent ? Theme.accentText : Theme.secondaryText
        }
        AppText {
            Layout.fillWidth: true
            text: row.text
            isStrong: row.isCurrent
            Accessible.ignored: true
        }
        AppText {
            text: row.detail
            isSecondary: true
            font.pixelSize: Theme.caption
            Accessible.ignored: true
        }
    }
}
