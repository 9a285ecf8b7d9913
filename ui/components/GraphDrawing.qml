import QtQuick
import QtQuick.Controls.Basic
import Tovi

/// Draws the nodes of a graph and the lines between them. The list beside it says the same to
/// those who do not see it, so that nothing here is in the accessibility tree.
Item {
    id: drawing

    required property var model
    required property string currentPath
    required property var kinds // of the lines
    required property var colorOf

    signal chosen(string path)
    signal activated(string path)

    readonly property double reachX: Math.max(0, width / 2 - (areNamed ? 70 : 24))
    readonly property double reachY: Math.max(0, height / 2 - 34)
    readonly property bool isCrowded: model.count > 60
    readonly property bool areNamed: model.count <= 26
    property var hovered: null

    function nodeAt(position) {
        const child = childAt(position.x, position.y)
        return child && child.path !== undefined ? child : null
    }

    Accessible.ignored: true
    onCurrentPathChanged: lines.draw()
    onHoveredChanged: {
        if (!hovered)
            return ToolTip.hide()
        hovered.ToolTip.delay = 300
        hovered.ToolTip.show(hovered.tie === "" ? hovered.name : hovered.name + "\n" + hovered.tie)
    }

    OnDemand {
        id: lines
        anchors.fill: parent
        visible: made.isWhole
        isWanted: made.isWhole && nodes.count > 0
        sourceComponent: GraphLines {
            circles: nodes
            kinds: drawing.kinds
            colorOf: drawing.colorOf
            isCrowded: drawing.isCrowded
        }
        function draw() {
            if (item && visible)
                item.requestPaint()
        }
        onVisibleChanged: draw()
    }
    Repeater {
        id: nodes
        model: GradualModel {
            id: made
            model: drawing.model
            delegate: Item {
                id: node

                required property int parentRow
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
                onCenterXChanged: lines.draw()
                onCenterYChanged: lines.draw()

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
                }
                AppIcon {
                    anchors.centerIn: parent
                    visible: node.extent > 20
                    symbol: node.symbol
                    extent: node.extent / 2
                    color: node.depth === 0 ? Theme.accentInk : Theme.text
                }
                Loader {
                    anchors.top: parent.bottom
                    anchors.topMargin: 3
                    anchors.horizontalCenter: parent.horizontalCenter
                    active: node.depth === 0 || node.isCurrent || drawing.areNamed
                    sourceComponent: Rectangle {
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
                }
            }
        }
    }
    HoverHandler { onPointChanged: drawing.hovered = hovered ? drawing.nodeAt(point.position) : null }
    TapHandler {
        onTapped: point => {
            const node = drawing.nodeAt(point.position)
            if (node)
                drawing.chosen(node.path)
        }
        onDoubleTapped: point => {
            const node = drawing.nodeAt(point.position)
            if (node)
                drawing.activated(node.path)
        }
    }
}
