import QtQuick
import QtQuick.Layouts
import Tovi

/// A period with how many files it has, as a number and as a bar.
NavigationRow {
    id: row

    required property string detail
    /// Whether Tab leads here: one row of a list, from which the arrow keys go on.
    property bool isEntry: false
    /// Of the longest bar, from 0 to 1.
    required property double share

    symbol: ""
    rightPadding: 12
    implicitHeight: Theme.rowHeight + 10
    focusPolicy: isEntry || activeFocus ? Qt.StrongFocus : Qt.ClickFocus
    contentItem: ColumnLayout {
        spacing: 4
        RowLayout {
            Layout.topMargin: 4
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
        Item {
            Layout.fillWidth: true
            Layout.bottomMargin: 6
            implicitHeight: 4
            Rectangle {
                anchors.left: parent.left
                width: Math.max(4, parent.width * row.share)
                height: parent.height
                radius: 2
                color: Theme.accent
            }
        }
    }
}
