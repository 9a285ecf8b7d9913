import QtQuick
import QtQuick.Controls.Basic

/// The details of the current file beside its table, where there is room for both. Made before
/// they are wanted, in parts, so that the first file does not have to wait.
OnDemand {
    id: pane

    required property FileTable beside
    required property bool hasRoom
    property int revision: 0
    property string phrase: ""

    SplitView.preferredWidth: 300
    SplitView.minimumWidth: 220
    visible: isWanted
    active: beside.count > 0
    isWanted: hasRoom && beside.shownPath !== ""
    sourceComponent: FileDetails {
        files: pane.beside.files
        path: pane.beside.shownPath
        revision: pane.revision
        phrase: pane.phrase
    }
}
