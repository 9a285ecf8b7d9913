import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// What was found in one category; the space bar or a click chooses for the review.
FocusScope {
    id: items

    required property string category
    readonly property var rows: Cleanup.candidates.list(category)
    readonly property var categories: Cleanup.candidates.categories
    property int revision: 0
    readonly property int row: revision >= 0 ? categories.rowOf(category) : -1
    readonly property bool isAnyChosen: revision >= 0 && (categories.value(row, "selectedCount") || 0) > 0

    signal leaveWanted

    Connections {
        target: Cleanup.candidates
        function onChanged() { ++items.revision }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 12
        RowLayout {
            Layout.fillWidth: true
            spacing: 12
            ActionButton {
                text: qsTr("All categories")
                symbol: "chart.bar"
                onClicked: items.leaveWanted()
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 0
                AppText {
                    Layout.fillWidth: true
                    text: items.categories.value(items.row, "title") || ""
                    font.pixelSize: Theme.subtitle
                    isStrong: true
                }
                AppText {
                    Layout.fillWidth: true
                    text: items.categories.value(items.row, "reason") || ""
                    isSecondary: true
                }
            }
            ActionButton {
                text: items.isAnyChosen ? qsTr("Choose none") : qsTr("Choose all")
                onClicked: Cleanup.candidates.selectCategory(items.category, !items.isAnyChosen)
            }
        }
        Card {
            Layout.fillWidth: true
            Layout.fillHeight: true
            GradualList {
                id: list
                anchors.fill: parent
                anchors.margins: 8
                focus: true
                activeFocusOnTab: true
                clip: true
                reuseItems: true
                model: items.rows
                boundsBehavior: Flickable.StopAtBounds
                ScrollBar.vertical: ScrollBar {}
                Accessible.role: Accessible.List
                Accessible.name: items.categories.value(items.row, "title") || ""
                delegate: CheckDelegate {
                    id: item

                    required property int index
                    required property string path
                    required property string name
                    required property string folder
                    required property var size
                    required property double modifiedAt
                    required property var lastUsedAt
                    required property string reviewOnlyReason
                    required property bool canMoveToTrash
                    required property bool selected

                    width: ListView.view.width
                    height: 52
                    padding: 0
                    checkable: false
                    focusPolicy: Qt.NoFocus
                    Accessible.checked: selected
                    Accessible.name: name
                    Accessible.description: qsTr("%1, %2, row %3 of %4").arg(Format.size(size))
                        .arg(reviewOnlyReason || Format.date(modifiedAt)).arg(index + 1).arg(list.count)
                    onClicked: {
                        list.currentIndex = index
                        if (canMoveToTrash)
                            Cleanup.candidates.toggle(path)
                    }
                    Accessible.onPressAction: clicked()
                    Accessible.onToggleAction: clicked()
                    Keys.onReturnPressed: App.reveal(path)
                    background: Rectangle {
                        radius: Theme.rowRadius
                        color: item.selected ? Theme.selected : item.hovered ? Theme.hover : "transparent"
                        border.width: item.ListView.isCurrentItem && list.activeFocus ? 2 : 0
                        border.color: Theme.accent
                    }
                    indicator: null
                    contentItem: RowLayout {
                        spacing: 12
                        Rectangle {
                            Layout.leftMargin: 12
                            implicitWidth: 18
                            implicitHeight: 18
                            radius: 4
                            opacity: item.canMoveToTrash ? 1 : 0
                            color: item.selected ? Theme.accent : "transparent"
                            border.width: 1
                            border.color: item.selected ? Theme.accent : Theme.outline
                            AppIcon {
                                anchors.centerIn: parent
                                visible: item.selected
                                symbol: "checkmark"
                                extent: 12
                                color: Theme.accentInk
                            }
                        }
                        ColumnLayout {
                            Layout.fillWidth: true
                            spacing: 0
                            AppText {
                                Layout.fillWidth: true
                                text: item.name
                                elide: Text.ElideMiddle
                                Accessible.ignored: true
                            }
                            AppText {
                                Layout.fillWidth: true
                                text: item.reviewOnlyReason || Format.path(item.folder)
                                elide: Text.ElideMiddle
                                isSecondary: true
                                font.pixelSize: Theme.caption
                                color: item.reviewOnlyReason ? Theme.warning : Theme.secondaryText
                                Accessible.ignored: true
                            }
                        }
                        AppText {
                            text: item.lastUsedAt ? qsTr("used %1").arg(Format.date(item.lastUsedAt))
                                                  : Format.date(item.modifiedAt)
                            isSecondary: true
                            Accessible.ignored: true
                        }
                        AppText {
                            Layout.preferredWidth: 80
                            text: Format.size(item.size)
                            horizontalAlignment: Text.AlignRight
                            isSecondary: true
                            Accessible.ignored: true
                        }
                        IconButton {
                            Layout.rightMargin: 4
                            opacity: item.hovered || item.ListView.isCurrentItem ? 1 : 0
                            focusPolicy: Qt.NoFocus
                            Accessible.ignored: true // Enter does the same
                            symbol: "arrow.up.right.square"
                            label: qsTr("Show %1 in its folder").arg(item.name)
                            onClicked: App.reveal(item.path)
                        }
                    }
                }
            }
        }
    }
}
