import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// The six categories as bars, the one with the most bytes first.
Flickable {
    id: bars

    readonly property var categories: Cleanup.candidates.categories

    signal chosen(string category)

    contentHeight: card.height + note.height + 16
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    ScrollBar.vertical: ScrollBar {}

    Card {
        id: card
        width: parent.width
        height: column.implicitHeight + 24

        ColumnLayout {
            id: column
            anchors.fill: parent
            anchors.margins: 12
            spacing: 4
            Repeater {
                model: bars.categories
                Pressable {
                    id: row

                    required property int index
                    required property string id
                    required property string title
                    required property string reason
                    required property int count
                    required property var bytes
                    required property int selectedCount
                    readonly property real largest: Math.max(1, bars.categories.value(0, "bytes") || 0)

                    Layout.fillWidth: true
                    objectName: "cleanup-category-" + id
                    implicitHeight: 60
                    padding: 8
                    enabled: count > 0
                    Accessible.role: Accessible.Button
                    Accessible.name: title
                    Accessible.description: qsTr("%1, %2").arg(Format.counted(count, qsTr("item"), qsTr("items")))
                        .arg(Format.size(bytes))
                    onClicked: bars.chosen(id)
                    background: Rectangle {
                        radius: Theme.controlRadius
                        color: row.hovered ? Theme.hover : "transparent"
                        FocusRing {
                            control: row
                            anchors.margins: 0
                        }
                    }
                    contentItem: ColumnLayout {
                        spacing: 6
                        RowLayout {
                            spacing: 12
                            AppText {
                                Layout.fillWidth: true
                                text: row.title
                                isStrong: row.count > 0
                                isSecondary: row.count === 0
                                Accessible.ignored: true
                            }
                            Chip {
                                visible: row.selectedCount > 0
                                text: qsTr("%1 chosen").arg(Format.count(row.selectedCount))
                                symbol: "checkmark"
                            }
                            AppText {
                                text: row.count === 0 ? qsTr("nothing found")
                                    : qsTr("%1  ·  %2").arg(Format.counted(row.count, qsTr("item"), qsTr("items")))
                                        .arg(Format.size(row.bytes))
                                isSecondary: true
                                Accessible.ignored: true
                            }
                        }
                        Item {
                            Layout.fillWidth: true
                            implicitHeight: 10
                            Rectangle {
                                anchors.fill: parent
                                radius: 5
                                color: Theme.background
                            }
                            Rectangle {
                                anchors.left: parent.left
                                visible: row.count > 0
                                width: Math.max(10, parent.width * row.bytes / row.largest)
                                height: parent.height
                                radius: 5
                                color: Theme.chart[row.index % Theme.chart.length]
                            }
                        }
                    }
                }
            }
        }
    }
    AppText {
        id: note
        y: card.height + 12
        width: parent.width
        text: qsTr("Sizes are those of the files, which on the disk can differ. %1").arg(Cleanup.report.notice || "")
        wrapMode: Text.Wrap
        isSecondary: true
        font.pixelSize: Theme.caption
    }
}
