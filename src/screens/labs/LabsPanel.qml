import QtQuick
import Sayvane

/// Where an assistant is asked, and what it answered.
Column {
    id: panel

    required property LabsView model
    readonly property LabsSession session: model.session

    spacing: Theme.screenMargin

    LabsChoices {
        width: parent.width
        model: panel.model
    }
    Column {
        width: parent.width
        spacing: Theme.rowSpacing

        LabsEditor {
            width: parent.width
            label: panel.model.promptLabel
            count: panel.model.promptCount
            text: panel.session.prompt
            onEdited: text => panel.session.prompt = text
        }
        LabsEditor {
            width: parent.width
            visible: panel.model.contextLabel !== ""
            label: panel.model.contextLabel
            count: panel.model.contextCount
            text: panel.session.context
            onEdited: text => panel.session.context = text
        }
        Row {
            spacing: Theme.labelSpacing

            Button {
                kind: Button.Prominent
                text: qsTr("Get answer")
                enabled: panel.session.canAsk
                onClicked: panel.model.ask()
            }
            Button {
                symbol: panel.model.dictating ? "stop.circle" : "mic"
                text: panel.model.dictating ? qsTr("Stop dictating") : qsTr("Dictate prompt")
                help: panel.model.dictating ? "" : qsTr("Speak the prompt instead of typing it")
                busy: panel.model.transcribing
                enabled: !busy
                onClicked: panel.model.dictate()
            }
            Spinner {
                anchors.verticalCenter: parent.verticalCenter
                running: panel.session.busy
            }
        }
        LabsError {
            text: panel.session.error
        }
    }
    LabsAnswerPanel {
        width: parent.width
        visible: panel.model.hasAnswer
        model: panel.model
    }
    Divider {
        width: parent.width
    }
    Column {
        width: parent.width
        spacing: 4

        Toggle {
            width: parent.width
            text: qsTr("Answer mode")
            enabled: panel.model.canSwitchAnswerMode
            checked: panel.model.answerMode.enabled
            onToggled: panel.model.answerMode.setEnabled(checked)
        }
        Caption {
            width: parent.width
            text: panel.model.answerModeCaption
        }
    }
    LabsRecent {
        width: parent.width
        visible: panel.session.history.length > 0
        history: panel.session.history
    }
}
