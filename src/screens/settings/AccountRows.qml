import QtQuick
import Sayvane

/// The account: signing in, or who is signed in.
Loader {
    id: rows

    required property AccountArea account

    width: parent ? parent.width : implicitWidth
    sourceComponent: account.status.signedIn ? signedIn
                   : account.signIn.needsKeychainRetry ? keychainRetry
                   : account.signIn.isCodeStage ? codeStep : emailStep

    Component {
        id: emailStep

        EmailStep {
            signIn: rows.account.signIn
        }
    }
    Component {
        id: codeStep

        CodeStep {
            account: rows.account
        }
    }
    Component {
        id: keychainRetry

        KeychainRetryStep {
            signIn: rows.account.signIn
        }
    }
    Component {
        id: signedIn

        SignedInRows {
            account: rows.account
        }
    }
}
