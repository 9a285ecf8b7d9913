import QtQuick
import Tovi

/// The lines of a `GraphDrawing`: all in one item, for many take long to make and to take apart.
Canvas {
    id: canvas

    required property Repeater circles
    required property var kinds
    required property var colorOf
    required property bool isCrowded

    function stroke(pen, kind, color, isMeant) {
        pen.strokeStyle = color
        pen.beginPath()
        for (let row = 0; row < circles.count; ++row) {
            const to = circles.itemAt(row)
            const from = to && to.kind === kind && isMeant(to) ? circles.itemAt(to.parentRow) : null
            if (!from)
                continue
            pen.moveTo(from.centerX, from.centerY)
            pen.lineTo(to.centerX, to.centerY)
        }
        pen.stroke()
    }

    onPaint: {
        const pen = getContext("2d")
        pen.clearRect(0, 0, width, height)
        for (const kind of kinds) {
            // Mixed here, for Qt draws lines that are not opaque several times slower.
            const color = colorOf(kind)
            pen.lineWidth = 1.5
            stroke(pen, kind, Qt.tint(Theme.surface, Qt.alpha(color, kind === "folder" && isCrowded ? 0.2 : 0.4)),
                   node => !node.isCurrent)
            pen.lineWidth = 3
            stroke(pen, kind, color, node => node.isCurrent)
        }
    }
    Connections {
        target: Theme
        function onChartChanged() { canvas.requestPaint() }
    }
}
