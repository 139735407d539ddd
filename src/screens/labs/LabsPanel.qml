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

    // What went wrong with a question.
    component LabsError: Row {
        id: line

        property string text: ""

        width: parent ? parent.width : implicitWidth
        spacing: 6
        visible: text !== ""
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text

        FontMetrics {
            id: metrics
            font: words.font
        }
        Icon {
            id: sign
            y: (metrics.height - size) / 2
            symbol: "exclamationmark.triangle.fill"
            size: 14
            color: Theme.error
        }
        Caption {
            id: words
            width: line.width - sign.width - line.spacing
            text: line.text
            color: Theme.error
            Accessible.ignored: true
        }
    }

    // The last questions and their answers.
    component LabsRecent: Column {
        id: recent

        property var history: []

        spacing: Theme.rowSpacing

        Label {
            text: qsTr("Recent")
            font.pixelSize: Theme.calloutSize
            font.weight: Font.DemiBold
            color: Theme.secondary
            Accessible.role: Accessible.Heading
        }
        Repeater {
            model: recent.history

            Column {
                required property var modelData

                width: recent.width
                spacing: 2

                Caption {
                    width: parent.width
                    text: modelData.provider + " · " + modelData.mode
                    color: Theme.tertiary
                }
                SelectableText {
                    width: parent.width
                    text: modelData.prompt
                    font.weight: Font.DemiBold
                }
                SelectableText {
                    width: parent.width
                    text: modelData.text
                }
            }
        }
    }

    // A labelled text of some lines with a count of its characters.
    component LabsEditor: Column {
        id: editor

        property string label: ""
        property string count: ""
        property string text: ""

        signal edited(string text)

        spacing: 6

        Item {
            width: parent.width
            height: name.implicitHeight

            Label {
                id: name
                text: editor.label
                font.weight: Font.Medium
            }
            Caption {
                anchors.right: parent.right
                anchors.baseline: name.baseline
                text: editor.count
                color: Theme.tertiary
                Accessible.name: qsTr("%1 characters").arg(text)
            }
        }
        TextArea {
            id: area
            width: parent.width
            implicitHeight: 96
            label: editor.label
            text: editor.text
            editor.onTextChanged: {
                if (area.text !== editor.text)
                    editor.edited(area.text);
            }
        }
    }
}
