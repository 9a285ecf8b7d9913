import QtQuick
import Tovi

/// One line for a password. Assistive technology is told of the field, never of what is in it; the
/// text cannot be copied.
FocusScope {
    id: field

    required property string label
    /// Not named "text", which Qt would tell assistive technology.
    readonly property alias password: input.text
    property bool isCapsLockOn: false

    signal accepted

    function clear() {
        input.clear()
    }
    function selectAll() {
        input.selectAll()
    }

    implicitHeight: 40
    implicitWidth: 280
    Accessible.role: Accessible.EditableText
    Accessible.description: label // Qt tells no name of a password field
    Accessible.passwordEdit: true
    Accessible.editable: true
    Accessible.focusable: true
    Accessible.focused: input.activeFocus

    Rectangle {
        anchors.fill: parent
        radius: Theme.controlRadius
        color: Theme.surface
        border.width: input.activeFocus ? 2 : 1
        border.color: input.activeFocus ? Theme.accent : Theme.outline
    }
    AppText {
        anchors.fill: input
        verticalAlignment: Text.AlignVCenter
        visible: input.length === 0
        text: field.label
        isSecondary: true
        Accessible.ignored: true
    }
    TextInput {
        id: input
        anchors.fill: parent
        anchors.leftMargin: 12
        anchors.rightMargin: 12
        focus: true
        activeFocusOnTab: true
        clip: true
        echoMode: TextInput.Password
        inputMethodHints: Qt.ImhHiddenText | Qt.ImhSensitiveData | Qt.ImhNoPredictiveText | Qt.ImhNoAutoUppercase
        verticalAlignment: TextInput.AlignVCenter
        font.pixelSize: Theme.body
        color: Theme.text
        selectionColor: Theme.accent
        selectedTextColor: Theme.accentInk
        selectByMouse: true
        Accessible.ignored: true
        onAccepted: field.accepted()
        Keys.onPressed: event => {
            event.accepted = false
            if (/^[a-z]$/i.test(event.text))
                field.isCapsLockOn = (event.text !== event.text.toLowerCase()) !== !!(event.modifiers & Qt.ShiftModifier)
        }
    }
}
