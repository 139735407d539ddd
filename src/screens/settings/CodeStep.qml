import QtQuick
import Sayvane

/// Asks for the code that was sent; the sixth digit checks it.
Column {
    id: step

    required property AccountArea account
    readonly property AccountSignIn signIn: account.signIn

    spacing: Theme.labelSpacing

    Label {
        text: qsTr("Sign in")
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }
    Label {
        width: parent.width
        text: qsTr("We sent a code to %1").arg(step.signIn.sentTo)
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
            text: step.signIn.code
            failed: step.signIn.errorText !== ""
            readOnly: step.signIn.busy
            horizontalAlignment: TextInput.AlignHCenter
            font.family: Theme.monospaced
            font.pixelSize: Theme.figureSize
            font.letterSpacing: 6
            inputMethodHints: Qt.ImhDigitsOnly
            onTextEdited: {
                step.signIn.enter(text);
                text = Qt.binding(() => step.signIn.code); // only digits stay
            }
            // Not from a screen that the user has gone to meanwhile.
            Component.onCompleted: if (visible) forceActiveFocus(Qt.OtherFocusReason)
        }
        Spinner {
            anchors.verticalCenter: parent.verticalCenter
            running: step.signIn.busy
        }
    }
    StatusLine {
        tone: StatusLine.Failure
        text: step.signIn.errorText
    }
    Row {
        spacing: Theme.labelSpacing

        Button {
            implicitWidth: 112
            text: step.account.resendLabel
            enabled: step.signIn.canResend
            onClicked: step.signIn.sendCode()
        }
        Button {
            kind: Button.Link
            text: qsTr("Use a different email")
            onClicked: step.signIn.reset()
        }
    }
}
