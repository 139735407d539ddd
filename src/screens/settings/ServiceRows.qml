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
            ConnectionRows {
                name: rows.form.providerName
                connection: rows.form.connection
            }
            Divider {
                width: parent.width
            }
            ModelRows {
                form: rows.form
            }
            Divider {
                width: parent.width
            }
        }
    }
    ServiceAddressRow {
        service: rows.form.service
    }
}
