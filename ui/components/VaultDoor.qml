import QtQuick
import QtQuick.Layouts
import Tovi
import Tovi.Models

/// The vault while it is locked or before it was made: asks for the password and shows nothing else.
FocusScope {
    id: door

    required property bool isNew
    readonly property bool isReady: password.password !== "" && !Vault.isBusy
        && (!isNew || password.password === repeated.password)

    function enter() {
        if (!isReady)
            return
        Vault.authenticate(password.password, isNew)
        repeated.clear()
    }

    Connections {
        target: Vault
        function onChanged() {
            if (Vault.errorMessage !== "" && !Vault.isBusy) {
                password.forceActiveFocus()
                password.selectAll()
            }
        }
    }

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - 48, 420)
        spacing: 12

        Rectangle {
            Layout.alignment: Qt.AlignHCenter
            implicitWidth: 72
            implicitHeight: 72
            radius: 36
            color: Theme.selected
            AppIcon {
                anchors.centerIn: parent
                symbol: "lock"
                extent: 32
                color: Theme.accentText
            }
        }
        AppText {
            Layout.alignment: Qt.AlignHCenter
            text: door.isNew ? qsTr("Meet your Vault.") : qsTr("Your vault is locked.")
            font.pixelSize: Theme.title
            isStrong: true
            Accessible.role: Accessible.Heading
        }
        AppText {
            Layout.fillWidth: true
            text: door.isNew
                ? qsTr("Encrypted copies of your files under a password that only you know. A forgotten password cannot be recovered.")
                : qsTr("Enter your password to see your files. Nothing inside the vault appears in library search.")
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
            isSecondary: true
        }
        AppText {
            Layout.fillWidth: true
            visible: text !== ""
            text: Vault.lockReason
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
            isSecondary: true
        }
        AppText {
            Layout.fillWidth: true
            visible: Vault.waitingCount > 0
            text: qsTr("An encrypted copy of %1 is added once the vault is open.")
                .arg(Format.counted(Vault.waitingCount, qsTr("file"), qsTr("files")))
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
            isStrong: true
            Accessible.role: Accessible.AlertMessage
        }
        PasswordField {
            id: password
            objectName: "vault-password"
            Layout.fillWidth: true
            Layout.topMargin: 8
            focus: true
            enabled: !Vault.isBusy
            label: door.isNew ? qsTr("Create a vault password") : qsTr("Vault password")
            onAccepted: door.isNew ? repeated.forceActiveFocus() : door.enter()
        }
        PasswordField {
            id: repeated
            Layout.fillWidth: true
            visible: door.isNew
            enabled: !Vault.isBusy
            label: qsTr("The same password again")
            onAccepted: door.enter()
        }
        AppText {
            Layout.fillWidth: true
            visible: password.isCapsLockOn || repeated.isCapsLockOn
            text: qsTr("Caps Lock is on.")
            color: Theme.warning
        }
        AppText {
            Layout.fillWidth: true
            visible: door.isNew && repeated.password !== "" && repeated.password !== password.password
            text: qsTr("The passwords differ.")
            color: Theme.warning
        }
        AppText {
            Layout.fillWidth: true
            visible: text !== ""
            text: Vault.errorMessage
            wrapMode: Text.Wrap
            color: Theme.danger
            Accessible.role: Accessible.AlertMessage
        }
        ActionButton {
            Layout.fillWidth: true
            text: Vault.isBusy ? Vault.activity : door.isNew ? qsTr("Create the vault") : qsTr("Unlock")
            isPrimary: true
            enabled: door.isReady
            onClicked: door.enter()
        }
    }
}
