import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// The plan that waits for review: every file, what becomes of it, and the one button that does it.
Sheet {
    id: sheet

    readonly property var plan: App.plans.proposedPlan
    readonly property var items: plan.items || []
    readonly property bool isRename: items.length > 0 && items[0].operation === "rename"
    readonly property string verb: isRename ? qsTr("Rename %1") : qsTr("Move %1 to Trash")
    readonly property string counted: verb.arg(Format.counted(items.length, qsTr("file"), qsTr("files")))

    title: plan.title || ""
    closePolicy: App.plans.isExecuting ? Popup.NoAutoClose : Popup.CloseOnEscape
    visible: plan.id !== undefined
    onOpened: cancel.forceActiveFocus()
    onClosed: if (App.plans.proposedPlan.id !== undefined && !App.plans.isExecuting) App.plans.cancelPlan()

    ColumnLayout {
        width: parent.width
        spacing: 16
        AppText {
            Layout.fillWidth: true
            text: sheet.isRename ? sheet.counted
                : qsTr("%1, %2").arg(sheet.counted).arg(Format.size(sheet.plan.totalSize || 0))
            font.pixelSize: Theme.heading
            isStrong: true
            Accessible.role: Accessible.Heading
        }
        AppText {
            Layout.fillWidth: true
            text: sheet.plan.explanation || ""
            visible: text !== ""
            wrapMode: Text.Wrap
            isSecondary: true
        }
        ListView {
            id: list
            Layout.fillWidth: true
            Layout.preferredHeight: Math.min(contentHeight, 320)
            clip: true
            model: sheet.items
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar {}
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Files of the plan")
            delegate: RowLayout {
                required property var modelData
                required property int index
                width: ListView.view.width - 12
                height: 46
                spacing: 12
                Accessible.role: Accessible.ListItem
                Accessible.name: modelData.sourcePath
                Accessible.description: qsTr("row %1 of %2").arg(index + 1).arg(list.count)
                AppIcon { symbol: sheet.isRename ? "pencil" : "trash" }
                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 0
                    AppText {
                        Layout.fillWidth: true
                        text: modelData.sourcePath
                        elide: Text.ElideMiddle
                    }
                    AppText {
                        Layout.fillWidth: true
                        visible: text !== ""
                        text: sheet.isRename ? qsTr("becomes %1").arg(Format.fileName(modelData.destinationPath || ""))
                            : modelData.freesNothing ? qsTr("frees nothing: another name of it stays") : ""
                        isSecondary: true
                        font.pixelSize: Theme.caption
                    }
                }
                AppText {
                    text: Format.size(modelData.size || 0)
                    isSecondary: true
                }
            }
        }
        AppText {
            Layout.fillWidth: true
            visible: (sheet.plan.retainedFiles || []).length > 0
            text: qsTr("%1 kept").arg(Format.counted((sheet.plan.retainedFiles || []).length,
                                                     qsTr("copy"), qsTr("copies")))
            color: Theme.success
            isStrong: true
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: 8
            ActionButton {
                id: cancel
                text: App.plans.isExecuting ? qsTr("Stop") : qsTr("Cancel")
                onClicked: App.plans.isExecuting ? App.plans.stopExecution() : App.plans.cancelPlan()
            }
            ActionButton {
                objectName: "plan-confirm"
                text: App.plans.isExecuting ? qsTr("Working…") : sheet.counted
                enabled: !App.plans.isExecuting
                isDanger: !sheet.isRename
                isPrimary: sheet.isRename
                onClicked: App.plans.confirmPlan(sheet.plan.id)
            }
        }
    }
}
