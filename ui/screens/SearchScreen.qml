import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// Plain phrases: how one was understood, and what it found.
FocusScope {
    id: screen

    readonly property string title: qsTr("Search")
    readonly property var found: App.search.results
    readonly property bool hasAnswer: App.search.activeSearchText !== ""

    property bool isAsking: false

    function begin() {
        isAsking = false
        field.forceActiveFocus()
        field.selectAll()
    }

    function ask() {
        isAsking = true
        passages.use(page => page.begin())
    }

    Timer {
        id: pause
        interval: 100
        onTriggered: App.search.search(field.text)
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        spacing: 16

        ScreenHeader {
            Layout.fillWidth: true
            title: screen.title
            subtitle: screen.isAsking ? (passages.item ? passages.item.summary : "") : !screen.hasAnswer ? ""
                : qsTr("%1 in %2 ms").arg(
                    (App.search.hasMoreSearchResults ? qsTr("more than ") : "")
                    + Format.counted(screen.found.count, qsTr("result"), qsTr("results")))
                    .arg(Math.max(1, Math.round(App.search.searchSeconds * 1000)))
            ActionButton {
                visible: !screen.isAsking
                text: qsTr("Save search")
                symbol: "star"
                enabled: screen.hasAnswer
                onClicked: App.savedSearches.saveSearch("", App.search.activeSearchText)
            }
            FilterButton {
                objectName: "search-find"
                text: qsTr("Find files")
                isCurrent: !screen.isAsking
                onClicked: screen.begin()
            }
            FilterButton {
                objectName: "search-ask"
                text: qsTr("Ask")
                isCurrent: screen.isAsking
                onClicked: screen.ask()
            }
        }
        OnDemand {
            id: passages
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: screen.isAsking
            source: "AskPassages.qml"
        }

        InputField {
            id: field
            visible: !screen.isAsking
            Layout.fillWidth: true
            implicitHeight: 44
            font.pixelSize: Theme.subtitle
            focus: true
            label: qsTr("Search your files")
            symbol: "magnifyingglass"
            placeholderText: qsTr("Try “pdfs from last week over 5 mb”")
            text: App.search.query
            onTextEdited: {
                App.search.query = text
                pause.restart()
            }
            onAccepted: {
                pause.stop()
                App.search.search(text)
            }
            Keys.onDownPressed: table.forceActiveFocus()
            Component.onCompleted: if (text) App.search.search(text)
        }

        Flow {
            Layout.fillWidth: true
            spacing: 8
            visible: !screen.isAsking && App.search.chips.length > 0
            Repeater {
                model: App.search.chips
                PhraseChip {
                    required property string modelData
                    required property int index
                    text: modelData
                    onClicked: {
                        field.forceActiveFocus()
                        App.search.removeChip(index)
                    }
                }
            }
        }

        Panes {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: !screen.isAsking && screen.found.count > 0
            Card {
                SplitView.fillWidth: true
                SplitView.minimumWidth: 380
                FileTable {
                    id: table
                    anchors.fill: parent
                    anchors.margins: 8
                    files: screen.found
                    sorter: App.search
                    phrase: App.search.searchedWords
                    hasMore: App.search.hasMoreSearchResults
                    onMoreWanted: App.search.loadMoreSearchResults()
                }
            }
            DetailsPane {
                hasRoom: screen.width > 900
                beside: table
                revision: App.search.resultsRevision
                phrase: App.search.activeSearchText
            }
        }

        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: !screen.isAsking && screen.found.count === 0
            EmptyState {
                anchors.centerIn: parent
                visible: screen.hasAnswer
                symbol: "magnifyingglass"
                title: qsTr("Nothing found")
                sentence: App.search.chips.length > 1
                    ? qsTr("Leave out a part of the phrase, such as “%1”.").arg(App.search.chips[0])
                    : qsTr("Try another word, or connect the folder the file lies in.")
                action: qsTr("Ask it as a question")
                onActed: {
                    Evidence.ask(App.search.activeSearchText)
                    screen.ask()
                }
            }
            ColumnLayout {
                anchors.centerIn: parent
                visible: !screen.hasAnswer && field.text === ""
                spacing: 12
                AppText {
                    Layout.alignment: Qt.AlignHCenter
                    visible: saved.count > 0
                    text: qsTr("Saved searches")
                    isStrong: true
                }
                Repeater {
                    id: saved
                    model: App.savedSearches.savedSearches
                    RowLayout {
                        required property string id
                        required property string name
                        required property string query
                        Layout.alignment: Qt.AlignHCenter
                        ActionButton {
                            text: name
                            symbol: "star"
                            onClicked: {
                                App.search.query = query
                                App.search.search(query)
                            }
                        }
                        IconButton {
                            symbol: "xmark"
                            label: qsTr("Remove the saved search %1").arg(name)
                            onClicked: App.savedSearches.removeSearch(id)
                        }
                    }
                }
                EmptyState {
                    Layout.alignment: Qt.AlignHCenter
                    visible: saved.count === 0
                    symbol: "magnifyingglass"
                    title: qsTr("Ask in plain words")
                    sentence: qsTr("Words are looked for in names and texts. Kinds, sizes, ages and where a file came from are understood: “screenshots from yesterday”, “spreadsheets over 1 mb”, “from github”.")
                }
            }
        }
    }
}
