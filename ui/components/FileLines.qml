import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi

/// The files of a sheet, one on a line; of a list with the roles `path` and `size`.
GradualList {
    id: lines

    required property string label
    required property string symbol
    /// What is said of a file under its path.
    required property var noteOf

    Layout.preferredHeight: Math.min(contentHeight, 320)
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    // Always seen, so that no row is missed.
    ScrollBar.vertical: ScrollBar {
        policy: ScrollBar.AlwaysOn
        visible: size < 1
    }
    Accessible.role: Accessible.List
    Accessible.name: label
    delegate: ListRow {
        id: row

        required property var model
        required property int index

        height: 46
        isCard: false
        Accessible.name: model.path
        Accessible.description: qsTr("row %1 of %2").arg(index + 1).arg(lines.count)
        RowLayout {
            anchors.fill: parent
            anchors.leftMargin: 8
            anchors.rightMargin: 12
            spacing: 12
            AppIcon { symbol: lines.symbol }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 0
                AppText {
                    Layout.fillWidth: true
                    text: Format.path(row.model.path)
                    elide: Text.ElideMiddle
                }
                AppText {
                    Layout.fillWidth: true
                    visible: text !== ""
                    text: lines.noteOf(row.model)
                    isSecondary: true
                    font.pixelSize: Theme.caption
                }
            }
            AppText {
                text: Format.size(row.model.size)
                isSecondary: true
            }
        }
    }
}
