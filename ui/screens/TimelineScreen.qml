import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// Files by when they were modified; a list of the days, weeks or months leads to them.
FocusScope {
    id: screen

    readonly property string title: qsTr("Timeline")
    readonly property double mostFiles: {
        let most = 1
        for (let row = 0; row < periods.count; ++row)
            most = Math.max(most, Timeline.periods.value(row, "count"))
        return most
    }

    Component.onCompleted: Timeline.refresh()
    Connections {
        target: App
        function onLibraryFilesChanged() { Timeline.refresh() }
    }
    Connections {
        target: Screens
        function onIndexChanged() { Timeline.refresh() }
    }

    function jump(text) {
        const written = text.trim()
        let day = Date.fromLocaleDateString(Qt.locale(), written, "yyyy-MM-dd")
        if (isNaN(day))
            day = Date.fromLocaleDateString(Qt.locale(), written, Locale.ShortFormat)
        hint.visible = written !== "" && isNaN(day)
        if (!hint.visible)
            Timeline.jumpTo(written === "" ? NaN : day.getTime())
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        spacing: 16

        ScreenHeader {
            Layout.fillWidth: true
            title: screen.title
            subtitle: Timeline.before > 0
                ? qsTr("Modified before %1").arg(Format.date(Timeline.before)) : qsTr("When your files changed")
            ActionButton {
                visible: Timeline.before > 0
                text: qsTr("Show newest")
                symbol: "arrow.uturn.backward"
                onClicked: {
                    field.clear()
                    Timeline.jumpTo(NaN)
                }
            }
            InputField {
                id: field
                visible: periods.count > 0
                Layout.preferredWidth: 210
                label: qsTr("Jump to date")
                placeholderText: Qt.formatDate(new Date(), "yyyy-MM-dd")
                symbol: "calendar"
                onTextEdited: hint.visible = false
                onAccepted: screen.jump(text)
                Accessible.description: hint.visible ? hint.text : ""
            }
        }
        RowLayout {
            Layout.fillWidth: true
            visible: periods.count > 0
            SettingsChoice {
                Layout.fillWidth: true
                label: qsTr("Group by")
                labelWidth: 0
                options: [
                    { value: "day", text: qsTr("Day") },
                    { value: "week", text: qsTr("Week") },
                    { value: "month", text: qsTr("Month") }
                ]
                current: Timeline.unit
                onChosen: value => Timeline.unit = value
            }
            AppText {
                id: hint
                visible: false
                text: qsTr("Write the date as %1.").arg(field.placeholderText)
                color: Theme.danger
            }
        }
        Banner {
            Layout.fillWidth: true
            visible: Timeline.error !== ""
            text: Timeline.error
            action: qsTr("Try again")
            onActed: Timeline.refresh()
            onDismissed: Timeline.refresh()
        }

        Panes {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: periods.count > 0

            Card {
                SplitView.preferredWidth: screen.width > 900 ? 290 : 236
                SplitView.minimumWidth: 200
                GradualList {
                    id: periods
                    anchors.fill: parent
                    anchors.margins: 8
                    clip: true
                    spacing: 2
                    model: Timeline.periods
                    boundsBehavior: Flickable.StopAtBounds
                    ScrollBar.vertical: ScrollBar {}
                    onAtYEndChanged: if (atYEnd && count > 0) Timeline.loadMorePeriods()
                    Accessible.role: Accessible.List
                    Accessible.name: qsTr("Periods")

                    delegate: PeriodRow {
                        required property int index
                        required property string id
                        required property double end
                        required property int count
                        required property var bytes
                        width: ListView.view.width
                        text: Format.period(id, Timeline.unit)
                        detail: Format.count(count)
                        share: count / screen.mostFiles
                        isEntry: ListView.isCurrentItem
                        isCurrent: Timeline.before === end
                        Accessible.description: qsTr("%1, %2, row %3 of %4")
                            .arg(Format.counted(count, qsTr("file"), qsTr("files"))).arg(Format.size(bytes))
                            .arg(index + 1).arg(periods.count)
                        onClicked: {
                            periods.currentIndex = index
                            Timeline.jumpTo(end - 1)
                        }
                    }
                }
            }
            Card {
                SplitView.fillWidth: true
                SplitView.minimumWidth: 340
                FileTable {
                    id: table
                    anchors.fill: parent
                    anchors.margins: 8
                    focus: true
                    files: Timeline.files
                    sectionRole: "period"
                    sectionTitle: section => Format.period(section, Timeline.unit)
                    hasMore: Timeline.hasMoreFiles
                    onMoreWanted: Timeline.loadMoreFiles()
                }
                EmptyState {
                    anchors.centerIn: parent
                    visible: Timeline.files.count === 0 && Timeline.before > 0
                    symbol: "calendar"
                    title: qsTr("Nothing older")
                    sentence: qsTr("All your indexed files changed on this date or later.")
                }
            }
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: periods.count === 0
            EmptyState {
                anchors.centerIn: parent
                visible: Timeline.hasLoaded || !Timeline.isLoading
                symbol: "calendar"
                title: qsTr("No files yet")
                sentence: qsTr("Connect a folder to see when its files changed.")
                action: qsTr("Add folder")
                onActed: App.folders.presentFolderPicker()
            }
            Waiting {
                anchors.centerIn: parent
                isBusy: Timeline.isLoading && !Timeline.hasLoaded
                text: qsTr("Reading your files…")
            }
        }
    }
}
