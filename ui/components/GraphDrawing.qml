import QtQuick
import QtQuick.Controls.Basic
import Tovi

/// Draws the nodes of a graph and the lines between them. The list beside it says the same to
/// those who do not see it, so that nothing here is in the accessibility tree.
Item {
    id: drawing

    required property var nodes
    required property string currentPath
    required property var colorOf

    signal chosen(string path)
    signal activated(string path)

    readonly property double reachX: Math.max(0, width / 2 - (areNamed ? 70 : 24))
    readonly property double reachY: Math.max(0, height / 2 - 34)
    readonly property bool isCrowded: nodes.count > 60
    readonly property bool areNamed: nodes.count <= 26

    Accessible.ignored: true

    Repeater {
        model: GradualModel {
            window: drawing.Window.window
            model: made.isWhole ? drawing.nodes : null // between circles that are there
            delegate: Rectangle {
                required property int index
                required property int parentRow
                required property string path
                required property string kind
                readonly property Item from: made.isWhole ? circles.itemAt(parentRow) : null
                readonly property Item to: made.isWhole ? circles.itemAt(index) : null
                readonly property double dx: from && to ? to.centerX - from.centerX : 0
                readonly property double dy: from && to ? to.centerY - from.centerY : 0
                readonly property bool isCurrent: path === drawing.currentPath

                x: from ? from.centerX : 0
                y: from ? from.centerY - height / 2 : 0
                width: Math.sqrt(dx * dx + dy * dy)
                height: isCurrent ? 3 : 1.5
                rotation: Math.atan2(dy, dx) * 180 / Math.PI
                transformOrigin: Item.Left
                antialiasing: true
                color: drawing.colorOf(kind)
                opacity: isCurrent ? 1 : kind === "folder" && drawing.isCrowded ? 0.2 : 0.4
            }
        }
    }
    Repeater {
        id: circles
        model: GradualModel {
            id: made
            window: drawing.Window.window
            model: drawing.nodes
            delegate: Item {
                id: node

                required property int index
                required property string path
                required property string name
                required property string symbol
                required property string kind
                required property string tie
                required property int depth
                required property double across
                required property double down
                readonly property bool isCurrent: path === drawing.currentPath
                readonly property double extent: depth === 0 ? 52 : drawing.isCrowded ? kind === "folder" ? 14 : 26 : depth === 1 ? 32 : 22
                property double centerX: drawing.width / 2 + across * drawing.reachX
                property double centerY: drawing.height / 2 + down * drawing.reachY

                Behavior on centerX { NumberAnimation { duration: 2 * Theme.slow; easing.type: Easing.OutCubic } }
                Behavior on centerY { NumberAnimation { duration: 2 * Theme.slow; easing.type: Easing.OutCubic } }

                x: centerX - extent / 2
                y: centerY - extent / 2
                z: isCurrent ? 2 : depth === 0 ? 1 : 0
                width: extent
                height: extent

                Rectangle {
                    anchors.fill: parent
                    radius: width / 2
                    color: node.depth === 0 ? Theme.accent : Theme.surface
                    border.width: node.isCurrent ? 4 : 2
                    border.color: node.depth === 0 ? Theme.accent : drawing.colorOf(node.kind)
                    AppIcon {
                        anchors.centerIn: parent
                        visible: node.extent > 20
                        symbol: node.symbol
                        extent: node.extent / 2
                        color: node.depth === 0 ? Theme.accentInk : Theme.text
                    }
                }
                Rectangle {
                    anchors.top: parent.bottom
                    anchors.topMargin: 3
                    anchors.horizontalCenter: parent.horizontalCenter
                    visible: node.depth === 0 || node.isCurrent || drawing.areNamed
                    width: label.width + 8
                    height: label.height
                    radius: 4
                    color: Qt.alpha(Theme.surface, 0.85)
                    AppText {
                        id: label
                        anchors.centerIn: parent
                        width: Math.min(implicitWidth, node.isCurrent || node.depth === 0 ? 240 : Math.min(130, drawing.width / 4))
                        text: node.name
                        elide: Text.ElideMiddle
                        font.pixelSize: Theme.caption
                        isStrong: node.depth === 0 || node.isCurrent
                        Accessible.ignored: true
                    }
                }
                HoverHandler { id: hover }
                TapHandler {
                    onTapped: drawing.chosen(node.path)
                    onDoubleTapped: drawing.activated(node.path)
                }
                ToolTip.visible: hover.hovered
                ToolTip.delay: 300
                ToolTip.text: node.tie === "" ? node.name : node.name + "\n" + node.tie
            }
        }
    }
}
