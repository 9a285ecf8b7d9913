import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// Two photos side by side, enlarged and moved together. The left one is the first, which is the one
/// that stays if one is proposed; Page Up and Down go through the others.
Sheet {
    id: sheet

    property var photos: []
    property bool hasKeeper: true
    property int other: 1
    property double zoom: 1
    property point middle: Qt.point(0, 0)

    function show(files, isFirstKept) {
        photos = files
        hasKeeper = isFirstKept
        other = 1
        fit()
        open()
    }
    function fit() {
        zoom = 1
        middle = Qt.point(0, 0)
    }
    function zoomBy(factor) {
        zoom = Math.max(1, Math.min(16, zoom * factor))
        moveBy(0, 0)
    }
    function moveBy(dx, dy) {
        const most = (1 - 1 / zoom) / 2
        middle = Qt.point(Math.max(-most, Math.min(most, middle.x - dx)),
                          Math.max(-most, Math.min(most, middle.y - dy)))
    }
    function step(by) {
        const others = photos.length - 1
        other = 1 + (other - 1 + by + others) % others
    }

    title: qsTr("Compare photos")
    width: parent.width - 48
    height: parent.height - 48
    padding: 20
    first: keys

    ColumnLayout {
        anchors.fill: parent
        spacing: 12
        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            AppText {
                Layout.fillWidth: true
                text: sheet.title
                font.pixelSize: Theme.heading
                isStrong: true
                Accessible.role: Accessible.Heading
            }
            IconButton {
                visible: sheet.photos.length > 2
                symbol: "chevron.right"
                label: qsTr("Next photo")
                onClicked: sheet.step(1)
            }
            IconButton {
                symbol: "minus.magnifyingglass"
                label: qsTr("Smaller")
                enabled: sheet.zoom > 1
                onClicked: sheet.zoomBy(1 / 1.5)
            }
            AppText {
                Layout.preferredWidth: 48
                text: Math.round(sheet.zoom * 100) + " %"
                horizontalAlignment: Text.AlignHCenter
            }
            IconButton {
                symbol: "plus.magnifyingglass"
                label: qsTr("Larger")
                enabled: sheet.zoom < 16
                onClicked: sheet.zoomBy(1.5)
            }
            ActionButton {
                text: qsTr("Fit")
                enabled: sheet.zoom > 1
                onClicked: sheet.fit()
            }
            IconButton {
                symbol: "xmark"
                label: qsTr("Close")
                onClicked: sheet.close()
            }
        }
        Item {
            id: keys
            Layout.fillWidth: true
            Layout.fillHeight: true
            activeFocusOnTab: true
            Accessible.role: Accessible.Pane
            Accessible.name: sheet.title
            Accessible.description: qsTr("Plus and minus enlarge, the arrow keys move, Page Down shows the next photo")
            Keys.onPressed: event => {
                event.accepted = true
                const far = 0.15 / sheet.zoom
                switch (event.key) {
                case Qt.Key_Plus:
                case Qt.Key_Equal: return sheet.zoomBy(1.5)
                case Qt.Key_Minus: return sheet.zoomBy(1 / 1.5)
                case Qt.Key_0: return sheet.fit()
                case Qt.Key_Left: return sheet.moveBy(far, 0)
                case Qt.Key_Right: return sheet.moveBy(-far, 0)
                case Qt.Key_Up: return sheet.moveBy(0, far)
                case Qt.Key_Down: return sheet.moveBy(0, -far)
                case Qt.Key_PageDown: return sheet.step(1)
                case Qt.Key_PageUp: return sheet.step(-1)
                }
                event.accepted = false
            }
            FocusRing {
                control: keys
                visible: keys.activeFocus
            }
            RowLayout {
                anchors.fill: parent
                anchors.margins: 4
                spacing: 12
                Repeater {
                    model: sheet.photos.length > 1 ? [0, sheet.other] : []
                    ZoomedPicture {
                        required property int modelData
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        Layout.preferredWidth: 1
                        photo: sheet.photos[modelData]
                        zoom: sheet.zoom
                        middle: sheet.middle
                        isKeeper: sheet.hasKeeper && modelData === 0
                        isMarked: LookAlikes.selectedCount > 0 && LookAlikes.isSelected(photo.path)
                        onZoomed: factor => sheet.zoomBy(factor)
                        onMoved: (dx, dy) => sheet.moveBy(dx, dy)
                        onMarkToggled: LookAlikes.toggle(photo.path)
                    }
                }
            }
        }
    }
}
