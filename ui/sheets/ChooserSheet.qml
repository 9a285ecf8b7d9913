import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// Goes from folder to folder to choose the one that is open, or files in them.
Sheet {
    id: sheet

    property string message: ""
    property bool isForFiles: false
    /// The paths of the files chosen so far.
    property var files: []
    property var answer: []

    signal accepted(var paths)
    signal rejected

    function ask(heading, about, folder, forFiles) {
        title = heading
        message = about
        isForFiles = forFiles
        files = []
        answer = []
        go(folder)
        open()
    }
    function go(path) {
        Browser.open(path, isForFiles)
    }
    function toggle(path) {
        files = files.includes(path) ? files.filter(file => file !== path) : [...files, path]
    }

    first: list
    onClosed: {
        files = []
        answer.length > 0 ? accepted(answer) : rejected()
    }

    Shortcut {
        sequence: "Alt+Up"
        enabled: sheet.opened
        onActivated: sheet.go("..")
    }
    Connections {
        target: Browser
        enabled: sheet.visible
        function onOpened(row) {
            place.text = Format.path(Browser.folder)
            if (list.activeFocus)
                list.enter(row)
            else
                list.currentIndex = row
        }
    }

    ColumnLayout {
        width: parent.width
        spacing: 16
        AppText {
            Layout.fillWidth: true
            text: sheet.title
            wrapMode: Text.Wrap
            font.pixelSize: Theme.heading
            isStrong: true
            Accessible.role: Accessible.Heading
        }
        AppText {
            Layout.fillWidth: true
            text: sheet.message
            wrapMode: Text.Wrap
            isSecondary: true
        }
        RowLayout {
            spacing: 8
            IconButton {
                symbol: "chevron.up"
                label: qsTr("Up one folder (Alt+Up)")
                enabled: Browser.folder !== "/"
                onClicked: sheet.go("..")
            }
            InputField {
                id: place
                Layout.fillWidth: true
                label: sheet.isForFiles ? qsTr("Path of a folder or file") : qsTr("Path of a folder")
                symbol: "folder"
                onActiveFocusChanged: if (activeFocus) selectAll()
                onEditingFinished: if (text !== Format.path(Browser.folder)) sheet.go(text)
            }
        }
        Card {
            Layout.fillWidth: true
            implicitHeight: Math.max(120, Math.min(336, sheet.parent.height - 312))
            color: Theme.background
            GradualList {
                id: list

                property string typed: ""

                /// Goes to the next name that begins with what is typed without a pause.
                function seek(text) {
                    typed = pause.running ? typed + text : text
                    pause.restart()
                    const row = Browser.rowBeginningWith(typed, currentIndex + (typed === text ? 1 : 0))
                    if (row >= 0)
                        enter(row)
                }

                anchors.fill: parent
                anchors.margins: 8
                clip: true
                model: Browser.entries
                boundsBehavior: Flickable.StopAtBounds
                ScrollBar.vertical: ScrollBar {}
                Accessible.role: Accessible.List
                Accessible.name: qsTr("In %1").arg(Format.path(Browser.folder))
                Keys.onPressed: event => {
                    if (event.key === Qt.Key_Backspace)
                        sheet.go("..")
                    else if (event.text > " " && !(event.modifiers & (Qt.ControlModifier | Qt.AltModifier)))
                        seek(event.text)
                    else
                        return
                    event.accepted = true
                }
                delegate: GroupRow {
                    required property int index
                    required property string path
                    required property string name
                    required property bool isFolder
                    required property var size
                    width: ListView.view.width
                    text: name
                    symbol: isFolder ? "folder" : isCurrent ? "checkmark" : "doc"
                    detail: isFolder ? "" : Format.size(size)
                    isCurrent: sheet.files.includes(path)
                    isEntry: ListView.isCurrentItem
                    Accessible.description: (isFolder ? qsTr("folder, row %1 of %2")
                        : isCurrent ? qsTr("chosen, row %1 of %2") : qsTr("row %1 of %2")).arg(index + 1).arg(list.count)
                    onClicked: {
                        list.currentIndex = index
                        if (isFolder)
                            sheet.go(path)
                        else
                            sheet.toggle(path)
                    }
                }
                Timer {
                    id: pause
                    interval: 1000
                }
            }
            AppText {
                anchors.centerIn: parent
                visible: list.count === 0 && !Browser.isLoading
                text: sheet.isForFiles ? qsTr("Nothing in this folder can be chosen") : qsTr("No folders in this one")
                isSecondary: true
            }
        }
        AppText {
            Layout.fillWidth: true
            visible: text !== ""
            text: Browser.error !== "" ? Browser.error : Browser.isCut
                ? qsTr("Only the first %1 are shown. A path can be typed above.").arg(Format.count(list.count)) : ""
            wrapMode: Text.Wrap
            color: Theme.warning
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: 8
            ActionButton {
                text: qsTr("Cancel")
                onClicked: sheet.close()
            }
            ActionButton {
                text: !sheet.isForFiles ? qsTr("Choose this folder") : sheet.files.length === 0 ? qsTr("Choose files")
                    : qsTr("Choose %1").arg(Format.counted(sheet.files.length, qsTr("file"), qsTr("files")))
                isPrimary: true
                // Not while the path says something else than the list.
                enabled: sheet.isForFiles ? sheet.files.length > 0 : !Browser.isLoading && Browser.error === ""
                onClicked: {
                    sheet.answer = sheet.isForFiles ? sheet.files : [Browser.folder]
                    sheet.close()
                }
            }
        }
    }
}
