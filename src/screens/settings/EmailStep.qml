import QtQuick
import Sayvane

/// Asks for the address to sign in with.
Column {
    id: step

    required property AccountSignIn signIn

    spacing: Theme.labelSpacing

    Label {
        text: qsTr("Sign in")
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }
    Callout {
        width: parent.width
        text: qsTr("We email you a six digit code. Nothing to remember, and the code lasts ten minutes.")
    }
    Row {
        width: Math.min(parent.width, 440)
        spacing: Theme.labelSpacing

        TextField {
            id: field
            width: parent.width - send.width - parent.spacing
            label: qsTr("Email address")
            placeholderText: qsTr("you@example.com")
            text: step.signIn.email
            failed: step.signIn.errorText !== ""
            enabled: !step.signIn.busy
            inputMethodHints: Qt.ImhEmailCharactersOnly | Qt.ImhNoAutoUppercase
            onTextEdited: step.signIn.email = text
            onAccepted: step.signIn.sendCode()
        }
        Button {
            id: send
            kind: Button.Prominent
            text: qsTr("Send code")
            busy: step.signIn.busy
            enabled: !busy && field.text.trim() !== ""
            onClicked: step.signIn.sendCode()
        }
    }
    StatusLine {
        tone: StatusLine.Failure
        text: step.signIn.errorText
    }
}
