import QtQuick
import Sayvane

/// Which of the provider's models are used.
Column {
    id: rows

    required property SettingsView form

    width: parent ? parent.width : implicitWidth
    spacing: Theme.rowSpacing

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
}
