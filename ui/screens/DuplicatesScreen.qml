import QtQuick
import QtQuick.Layouts
import Tovi

/// Files that are the same, and photos that look the same.
FocusScope {
    id: screen

    readonly property string title: qsTr("Duplicates")
    property bool showsLookAlikes: false

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        spacing: 16

        ScreenHeader {
            Layout.fillWidth: true
            title: screen.title
            subtitle: screen.showsLookAlikes ? lookAlikes.summary : copies.summary
            FilterButton {
                objectName: "duplicates-exact"
                text: qsTr("Exact copies")
                isCurrent: !screen.showsLookAlikes
                onClicked: screen.showsLookAlikes = false
            }
            FilterButton {
                objectName: "duplicates-look-alikes"
                text: qsTr("Look-alikes")
                isCurrent: screen.showsLookAlikes
                onClicked: screen.showsLookAlikes = true
            }
        }
        ExactCopies {
            id: copies
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: !screen.showsLookAlikes
        }
        LookAlikePhotos {
            id: lookAlikes
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: screen.showsLookAlikes
        }
    }
}
