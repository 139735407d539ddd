import QtQuick
import Sayvane

/// What the assistant answered.
Card {
    id: panel

    required property LabsView model

    Label {
        width: parent.width
        text: panel.model.answerHeading
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }
    TextArea {
        width: parent.width
        implicitHeight: Math.min(Math.max(editor.contentHeight + 16, 64), 320)
        label: qsTr("Answer")
        readOnly: true
        text: panel.model.answerText
    }
    Row {
        spacing: Theme.labelSpacing

        Button {
            symbol: "doc.on.doc"
            text: qsTr("Copy")
            help: qsTr("Copy the answer")
            onClicked: {
                panel.model.copyAnswer();
                done.restart();
            }
        }
        Button {
            text: qsTr("Paste into last app")
            onClicked: panel.model.pasteAnswer()
        }
        StatusLine {
            width: 120
            anchors.verticalCenter: parent.verticalCenter
            tone: StatusLine.Success
            text: done.running ? qsTr("Copied") : ""

            Timer {
                id: done
                interval: 1500
            }
        }
    }
    Caption {
        width: parent.width
        text: qsTr("Sayvane cannot bring the app you were in back to the front from here, so this also copies the answer: switch to it and press ⌘V if the paste does not land there.")
    }
}
