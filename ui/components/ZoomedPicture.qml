import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi

/// One side of a comparison: a picture that is moved and enlarged together with the other one.
ColumnLayout {
    id: half

    required property var photo
    required property double zoom
    /// What is in the middle, as a share of the picture's width and height beyond its centre.
    required property point middle
    property bool isKeeper: false
    property bool isMarked: false

    signal zoomed(double factor)
    signal moved(double dx, double dy)
    signal markToggled

    spacing: 8
    Rectangle {
        id: frame
        Layout.fillWidth: true
        Layout.fillHeight: true
        radius: Theme.controlRadius
        color: Theme.background
        border.width: half.isMarked ? 2 : 1
        border.color: half.isMarked ? Theme.danger : Theme.border
        clip: true
        FilePicture {
            width: frame.width * half.zoom
            height: frame.height * half.zoom
            x: (frame.width - width) / 2 - half.middle.x * width
            y: (frame.height - height) / 2 - half.middle.y * height
            path: half.photo.path || ""
            kind: half.photo.kind || ""
            symbol: half.photo.symbol || "photo"
            version: half.photo.modifiedAt || 0
            side: 2048
        }
        DragHandler {
            target: null
            property point last: Qt.point(0, 0)
            onActiveChanged: last = Qt.point(0, 0)
            onTranslationChanged: {
                half.moved((translation.x - last.x) / (frame.width * half.zoom),
                           (translation.y - last.y) / (frame.height * half.zoom))
                last = Qt.point(translation.x, translation.y)
            }
        }
        WheelHandler {
            onWheel: event => half.zoomed(event.angleDelta.y > 0 ? 1.2 : 1 / 1.2)
        }
        Chip {
            x: 8
            y: 8
            visible: half.isKeeper
            text: qsTr("Keep")
            symbol: "checkmark"
        }
    }
    RowLayout {
        Layout.fillWidth: true
        spacing: 8
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0
            AppText {
                Layout.fillWidth: true
                text: half.photo.name || ""
                elide: Text.ElideMiddle
                isStrong: true
            }
            AppText {
                Layout.fillWidth: true
                text: half.photo.path === undefined ? ""
                    : qsTr("%1 × %2").arg(half.photo.width).arg(half.photo.height) + "  ·  "
                      + Format.size(half.photo.size) + "  ·  " + Format.dateTime(half.photo.modifiedAt)
                font.pixelSize: Theme.caption
                isSecondary: true
            }
            AppText {
                Layout.fillWidth: true
                text: Format.path(half.photo.folder || "")
                elide: Text.ElideMiddle
                font.pixelSize: Theme.caption
                isSecondary: true
            }
        }
        ActionButton {
            text: half.isMarked ? qsTr("Unmark") : qsTr("Mark for Trash")
            symbol: half.isMarked ? "arrow.uturn.backward" : "trash"
            Accessible.description: half.photo.name || ""
            onClicked: half.markToggled()
        }
    }
}
