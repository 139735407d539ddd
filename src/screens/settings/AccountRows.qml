import QtQuick
import Sayvane

/// The account: signing in, or who is signed in.
Loader {
    id: rows

    required property AccountArea account
    readonly property AccountSignIn signIn: account.signIn

    width: parent ? parent.width : implicitWidth
    sourceComponent: account.status.signedIn ? signedIn
                   : signIn.needsKeychainRetry ? keychainRetry
                   : signIn.isCodeStage ? codeStep : emailStep

    /// Asks for the address to sign in with.
    Component {
        id: emailStep

        Column {
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
                    text: rows.signIn.email
                    failed: rows.signIn.errorText !== ""
                    enabled: !rows.signIn.busy
                    inputMethodHints: Qt.ImhEmailCharactersOnly | Qt.ImhNoAutoUppercase
                    onTextEdited: rows.signIn.email = text
                    onAccepted: rows.signIn.sendCode()
                }
                Button {
                    id: send
                    kind: Button.Prominent
                    text: qsTr("Send code")
                    busy: rows.signIn.busy
                    enabled: !busy && field.text.trim() !== ""
                    onClicked: rows.signIn.sendCode()
                }
            }
            StatusLine {
                tone: StatusLine.Failure
                text: rows.signIn.errorText
            }
        }
    }
    /// Asks for the code that was sent; the sixth digit checks it.
    Component {
        id: codeStep

        Column {
            spacing: Theme.labelSpacing

            Label {
                text: qsTr("Sign in")
                font.weight: Font.DemiBold
                Accessible.role: Accessible.Heading
            }
            Label {
                width: parent.width
                text: qsTr("We sent a code to %1").arg(rows.signIn.sentTo)
            }
            Callout {
                width: parent.width
                text: qsTr("Six digits, and it checks itself as soon as all six are in.")
            }
            Row {
                spacing: Theme.rowSpacing

                TextField {
                    id: field
                    width: 164
                    implicitHeight: 40
                    label: qsTr("Six digit code")
                    text: rows.signIn.code
                    failed: rows.signIn.errorText !== ""
                    readOnly: rows.signIn.busy
                    horizontalAlignment: TextInput.AlignHCenter
                    font.family: Theme.monospaced
                    font.pixelSize: Theme.figureSize
                    font.letterSpacing: 6
                    inputMethodHints: Qt.ImhDigitsOnly
                    onTextEdited: {
                        rows.signIn.enter(text);
                        text = Qt.binding(() => rows.signIn.code); // only digits stay
                    }
                    // Not from a screen that the user has gone to meanwhile.
                    Component.onCompleted: if (visible) forceActiveFocus(Qt.OtherFocusReason)
                }
                Spinner {
                    anchors.verticalCenter: parent.verticalCenter
                    running: rows.signIn.busy
                }
            }
            StatusLine {
                tone: StatusLine.Failure
                text: rows.signIn.errorText
            }
            Row {
                spacing: Theme.labelSpacing

                Button {
                    implicitWidth: 112
                    text: rows.account.resendLabel
                    enabled: rows.signIn.canResend
                    onClicked: rows.signIn.sendCode()
                }
                Button {
                    kind: Button.Link
                    text: qsTr("Use a different email")
                    onClicked: rows.signIn.reset()
                }
            }
        }
    }
    /// The session is verified, but the keyring refused it.
    Component {
        id: keychainRetry

        Column {
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
                text: rows.signIn.errorText
            }
            Row {
                spacing: Theme.labelSpacing

                Button {
                    kind: Button.Prominent
                    text: qsTr("Try again")
                    onClicked: rows.signIn.retryStore()
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
                onConfirmed: rows.signIn.discardUnsavedSession()
            }
        }
    }
    Component {
        id: signedIn

        SignedInRows {
            account: rows.account
        }
    }
}
