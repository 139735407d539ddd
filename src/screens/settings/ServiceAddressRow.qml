import QtQuick
import Sayvane

/// Where the hosted service lives.
FormRow {
    id: row

    required property ServiceAddress service

    text: qsTr("Service URL")

    Row {
        width: parent.width
        spacing: Theme.labelSpacing

        TextField {
            width: parent.width - apply.width - reset.width - 2 * parent.spacing
            label: row.text
            text: row.service.serviceURLDraft
            failed: row.service.serviceURLError !== ""
            inputMethodHints: Qt.ImhUrlCharactersOnly
            onTextEdited: row.service.serviceURLDraft = text
            onAccepted: row.service.applyServiceURL()
        }
        Button {
            id: apply
            text: qsTr("Apply")
            enabled: row.service.canApply
            onClicked: row.service.applyServiceURL()
        }
        Button {
            id: reset
            text: qsTr("Reset")
            help: qsTr("Back to the address that Sayvane came with")
            onClicked: row.service.resetServiceURL()
        }
    }
    StatusLine {
        tone: StatusLine.Failure
        text: row.service.serviceURLError
    }
    Caption {
        width: parent.width
        text: qsTr("Where the Sayvane account lives, https only. Leave this alone unless you have been asked to change it.")
    }
}
