import QtQuick
import Tovi

/// What a file looks like: a picture, or the first page of a PDF; its symbol where there is neither.
Item {
    id: picture

    required property string path
    required property string kind
    required property string symbol
    /// Changes with the file.
    property var version: ""
    /// Of the longer side, in pixels.
    property int side: 512
    property alias fillMode: image.fillMode
    readonly property bool isDrawable: kind === "image" || kind === "pdf"
    readonly property bool isLoaded: image.status === Image.Ready
    // What has no picture is given as a single pixel.
    readonly property bool isShown: isLoaded && image.implicitWidth > 1
    readonly property bool hasFailed: isLoaded && !isShown

    Image {
        id: image
        anchors.fill: parent
        source: picture.path !== "" && picture.isDrawable
            ? "image://preview/" + encodeURIComponent(picture.path) + "?" + Number(picture.version) : ""
        sourceSize: Qt.size(picture.side, picture.side)
        fillMode: Image.PreserveAspectFit
        asynchronous: true
        opacity: picture.isShown ? 1 : 0
        Accessible.ignored: true
        Behavior on opacity { NumberAnimation { duration: Theme.fast } }
    }
    AppIcon {
        anchors.centerIn: parent
        visible: !picture.isShown
        symbol: picture.symbol
        extent: Math.min(48, Math.min(parent.width, parent.height) / 2)
        color: Theme.accentText
        opacity: image.status === Image.Loading ? 0.4 : 1
    }
}
