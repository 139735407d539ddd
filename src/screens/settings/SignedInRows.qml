import QtQuick
import Sayvane

/// Who is signed in, what is left for today, and the account's devices.
Column {
    id: rows

    required property AccountArea account
    readonly property AccountSignIn signIn: account.signIn
    readonly property AccountStatus status: account.status

    spacing: Theme.rowSpacing

    Row {
        width: parent.width
        spacing: Theme.labelSpacing

        Icon {
            id: seal
            symbol: "checkmark.seal.fill"
            size: 28
            color: Theme.success
        }
        Column {
            width: parent.width - seal.width - parent.spacing
            anchors.verticalCenter: parent.verticalCenter

            Label {
                text: qsTr("Signed in")
                font.weight: Font.DemiBold
                Accessible.description: rows.status.summary
            }
            SelectableText {
                visible: text !== ""
                width: Math.min(implicitWidth, parent.width)
                text: rows.status.email
                color: Theme.secondary
            }
        }
    }
    Column {
        width: parent.width

        FormRow {
            text: qsTr("Allowance")
            stacked: false
            Label {
                height: Theme.controlHeight
                verticalAlignment: Text.AlignVCenter
                text: rows.account.allowance
            }
        }
        FormRow {
            text: qsTr("Left today")
            stacked: false
            Label {
                height: Theme.controlHeight
                verticalAlignment: Text.AlignVCenter
                text: rows.account.leftToday
            }
        }
    }
    Divider {
        width: parent.width
    }
    Item {
        width: parent.width
        height: Theme.controlHeight

        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Devices")
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
        }
        Button {
            anchors.right: parent.right
            text: qsTr("Refresh")
            help: qsTr("Ask the service which devices are signed in")
            busy: rows.signIn.loadingDevices
            enabled: !busy
            onClicked: rows.signIn.loadDevices()
        }
    }
    Caption {
        visible: rows.signIn.devices.length === 0
        text: qsTr("No devices listed yet.")
    }
    Repeater {
        model: rows.signIn.devices

        DeviceRow {
            required property var modelData

            name: modelData.device
            current: modelData.current
            lastUsed: rows.account.lastUsed(modelData.lastUsedAt)
            onSignedOut: {
                farewell.device = modelData;
                farewell.open();
            }
        }
    }
    StatusLine {
        tone: StatusLine.Failure
        text: rows.signIn.devicesError
    }
    Divider {
        width: parent.width
    }
    Row {
        spacing: Theme.labelSpacing

        Button {
            kind: Button.Destructive
            text: qsTr("Sign out on this Mac")
            onClicked: signOut.open()
        }
        Button {
            kind: Button.Link
            text: qsTr("Manage account")
            help: qsTr("Opens the account's page in the browser")
            onClicked: rows.account.manageAccount()
        }
    }
    StatusLine {
        tone: StatusLine.Failure
        text: rows.signIn.errorText
    }
    StatusLine {
        text: rows.account.notice
    }

    ConfirmationDialog {
        id: farewell
        property var device
        title: device ? qsTr("Sign out “%1”?").arg(device.device) : ""
        message: qsTr("Dictating there needs a new sign-in.")
        confirmText: qsTr("Sign out")
        onConfirmed: rows.signIn.signOut(device)
    }
    ConfirmationDialog {
        id: signOut
        title: qsTr("Sign out on this Mac?")
        message: qsTr("Dictating with the Sayvane service needs a new sign-in. Your dictations stay.")
        confirmText: qsTr("Sign out")
        onConfirmed: rows.signIn.signOutThisMac()
    }

    /// One device of the account.
    component DeviceRow: Item {
        id: row

        property string name: ""
        property bool current: false
        property string lastUsed: ""

        signal signedOut

        width: parent ? parent.width : implicitWidth
        implicitHeight: texts.height

        Column {
            id: texts
            width: parent.width - Math.max(badge.width, button.width) - Theme.labelSpacing

            Label {
                width: parent.width
                text: row.name
                elide: Text.ElideRight
                wrapMode: Text.NoWrap
            }
            Caption {
                width: parent.width
                text: row.lastUsed
            }
        }
        Label {
            id: badge
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: row.current
            text: qsTr("This Mac")
            color: Theme.secondary
        }
        Button {
            id: button
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: !row.current
            kind: Button.Destructive
            text: qsTr("Sign out")
            help: qsTr("Sign out %1").arg(row.name)
            onClicked: row.signedOut()
        }
    }
}
