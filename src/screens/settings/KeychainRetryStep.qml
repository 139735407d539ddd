import QtQuick
import Sayvane

/// The session is verified, but the keyring refused it.
Column {
    id: step

    required property AccountSignIn signIn

    spacing: Theme.labelSpacing

    StatusLine {
        tone: StatusLine.Warning
        text: qsTr("Signed in, but the session could not be saved to the Keychain.")
    }
    Callout {
        width: parent.width
        text: qsTr("Unlock the login keychain, or allow the prompt, and try again. Giving up signs this Mac out on the server too.")
    }
    StatusLine {
        tone: StatusLine.Failure
        text: step.signIn.errorText
    }
    Row {
        spacing: Theme.labelSpacing

        Button {
            kind: Button.Prominent
            text: qsTr("Try again")
            onClicked: step.signIn.retryStore()
        }
        Button {
            kind: Button.Destructive
            text: qsTr("Give up")
            onClicked: surrender.open()
        }
    }
    ConfirmationDialog {
        id: surrender
        title: qsTr("Give up signing in?")
        message: qsTr("Giving up signs this Mac out on the server too.")
        confirmText: qsTr("Give up")
        onConfirmed: step.signIn.discardUnsavedSession()
    }
}
