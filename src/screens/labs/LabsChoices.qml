import QtQuick
import Sayvane

/// Which assistant is asked, and for what.
Column {
    id: choices

    required property LabsView model
    readonly property LabsSession session: model.session

    spacing: Theme.rowSpacing

    FormRow {
        text: qsTr("Provider")
        labelWidth: 72

        SegmentedPicker {
            visible: choices.model.providers.length > 0
            label: qsTr("Provider")
            options: choices.model.providers
            current: choices.model.selectedProvider
            onPicked: value => choices.model.selectedProvider = value
        }
        Item {
            visible: choices.session.loadingProviders && choices.model.providers.length === 0
            width: 16
            height: Theme.controlHeight

            Spinner {
                anchors.centerIn: parent
                running: parent.visible
            }
        }
        Row {
            visible: choices.model.providersNotice !== ""
            width: parent.width
            spacing: Theme.labelSpacing

            Label {
                width: Math.min(implicitWidth, parent.width - again.width - parent.spacing)
                height: Math.max(Theme.controlHeight, implicitHeight)
                verticalAlignment: Text.AlignVCenter
                text: choices.model.providersNotice
                color: Theme.secondary
            }
            Button {
                id: again
                kind: Button.Link
                text: qsTr("Try again")
                onClicked: choices.session.loadProviders()
            }
        }
    }
    FormRow {
        text: qsTr("Mode")
        labelWidth: 72

        SegmentedPicker {
            label: qsTr("Mode")
            options: choices.model.modes
            current: choices.session.mode
            onPicked: value => choices.session.mode = value
        }
        Caption {
            width: parent.width
            text: choices.model.modeHint
        }
    }
}
