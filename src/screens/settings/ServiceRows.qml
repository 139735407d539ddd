import QtQuick
import Sayvane

/// Who transcribes, and what is needed for it.
Column {
    id: rows

    required property SettingsView form

    width: parent ? parent.width : implicitWidth
    spacing: Theme.rowSpacing

    FormRow {
        text: qsTr("Provider")

        SegmentedPicker {
            label: qsTr("Provider")
            options: rows.form.providers
            current: rows.form.providerSelection
            onPicked: value => rows.form.providerSelection = value
        }
    }
    Caption {
        width: parent.width
        visible: !rows.form.usesOwnKey
        text: qsTr("The Sayvane service holds the API key and picks the models for you. Choose Groq or OpenAI to use a key of your own instead.")
    }
    Divider {
        width: parent.width
    }
    Loader {
        width: parent.width
        active: rows.form.usesOwnKey
        visible: active
        sourceComponent: Column {
            spacing: Theme.rowSpacing

            OwnKeyRows {
                name: rows.form.providerName
                key: rows.form.key
            }
            Column {
                width: parent ? parent.width : implicitWidth
                spacing: Theme.labelSpacing

                Button {
                    text: qsTr("Test connection")
                    help: qsTr("Asks %1 which models it serves. No audio is sent.").arg(rows.form.providerName)
                    busy: rows.form.key.testingConnection
                    enabled: !busy
                    onClicked: rows.form.key.testConnection()
                }
                StatusLine {
                    tone: StatusLine.Success
                    text: rows.form.key.connectionStatus
                }
                Caption {
                    width: parent.width
                    visible: text !== ""
                    text: rows.form.key.connectionDetail
                }
                StatusLine {
                    tone: StatusLine.Failure
                    text: rows.form.key.connectionError
                }
            }
            Divider {
                width: parent.width
            }
            FormRow {
                text: qsTr("Transcription model")

                TextField {
                    width: parent.width
                    label: qsTr("Transcription model")
                    text: rows.form.preferences.transcriptionModel
                    onTextEdited: rows.form.preferences.transcriptionModel = text
                }
                Caption {
                    width: parent.width
                    text: rows.form.transcriptionCaption
                }
            }
            FormRow {
                text: qsTr("Cleanup model")

                TextField {
                    width: parent.width
                    label: qsTr("Cleanup model")
                    text: rows.form.preferences.chatModel
                    onTextEdited: rows.form.preferences.chatModel = text
                }
                Caption {
                    width: parent.width
                    text: rows.form.cleanupCaption
                }
            }
            Button {
                text: qsTr("Reset to defaults")
                onClicked: rows.form.resetModels()
            }
            Divider {
                width: parent.width
            }
        }
    }
    FormRow {
        id: address

        readonly property ServiceAddress service: rows.form.service

        text: qsTr("Service URL")

        Row {
            width: parent.width
            spacing: Theme.labelSpacing

            TextField {
                width: parent.width - apply.width - reset.width - 2 * parent.spacing
                label: address.text
                text: address.service.serviceURLDraft
                failed: address.service.serviceURLError !== ""
                inputMethodHints: Qt.ImhUrlCharactersOnly
                onTextEdited: address.service.serviceURLDraft = text
                onAccepted: address.service.applyServiceURL()
            }
            Button {
                id: apply
                text: qsTr("Apply")
                enabled: address.service.canApply
                onClicked: address.service.applyServiceURL()
            }
            Button {
                id: reset
                text: qsTr("Reset")
                help: qsTr("Back to the address that Sayvane came with")
                onClicked: address.service.resetServiceURL()
            }
        }
        StatusLine {
            tone: StatusLine.Failure
            text: address.service.serviceURLError
        }
        Caption {
            width: parent.width
            text: qsTr("Where the Sayvane account lives, https only. Leave this alone unless you have been asked to change it.")
        }
    }
}
