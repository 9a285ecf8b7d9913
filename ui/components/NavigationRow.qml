import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi

/// One line of the sidebar.
ItemDelegate {
    id: row

    required property string symbol
    property bool isCurrent: false
    property bool isCompact: false
    /// Only the symbol is seen.
    property bool isNarrow: false

    implicitHeight: isCompact ? Theme.compactRowHeight : Theme.rowHeight
    padding: 0
    leftPadding: isNarrow ? 9 : 12
    focusPolicy: isCurrent || activeFocus ? Qt.TabFocus : Qt.NoFocus
    rightPadding: 8
    Accessible.role: Accessible.ListItem
    Accessible.name: text
    Accessible.selected: isCurrent
    Accessible.onPressAction: clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    ToolTip.text: text
    ToolTip.visible: isNarrow && (hovered || visualFocus && activeFocus)
    ToolTip.delay: 600

    contentItem: RowLayout {
        spacing: 10
        AppIcon {
            symbol: row.symbol
            color: row.isCurrent ? Theme.accentText : Theme.secondaryText
        }
        AppText {
            Layout.fillWidth: true
            visible: !row.isNarrow
            text: row.text
            isStrong: row.isCurrent
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        radius: Theme.rowRadius
        color: row.isCurrent ? Theme.selected : row.hovered ? Theme.hover : "transparent"
        Rectangle {
            visible: row.isCurrent
            width: 3
            radius: 1.5
            height: parent.height - 14
            anchors.verticalCenter: parent.verticalCenter
            x: row.mirrored ? parent.width - width - 2 : 2
            color: Theme.accent
        }
        FocusRing {
            control: row
            anchors.margins: 0
            radius: Theme.rowRadius
        }
    }
}
