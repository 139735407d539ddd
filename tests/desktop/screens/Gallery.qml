import QtQuick
import QtQuick.Window
import Sayvane

/// Every control in every state, and every symbol at the sizes it is used in.
Window {
    id: window

    required property var symbols

    color: Theme.window

    ScrollPane {
        anchors.fill: parent

        Title { text: "Controls" }
        Row {
            spacing: 20

            Repeater {
                model: [
                    { kind: Button.Plain, text: "Plain" }, { kind: Button.Prominent, text: "Prominent" },
                    { kind: Button.Destructive, text: "Destructive" }, { kind: Button.Borderless, text: "Borderless" },
                    { kind: Button.Link, text: "Link" }
                ]

                Column {
                    required property var modelData
                    spacing: 12

                    Button { kind: parent.modelData.kind; text: parent.modelData.text }
                    Button { kind: parent.modelData.kind; text: parent.modelData.text; objectName: "hover" }
                    Button { kind: parent.modelData.kind; text: parent.modelData.text; down: true }
                    Button { kind: parent.modelData.kind; text: parent.modelData.text; enabled: false }
                    Button { kind: parent.modelData.kind; text: parent.modelData.text; busy: true }
                    Button { kind: parent.modelData.kind; text: parent.modelData.text; symbol: "mic.fill" }
                }
            }
            Column {
                spacing: 12

                TextField { placeholderText: "Empty field" }
                TextField { text: "Filled field" }
                TextField { text: "Disabled field"; enabled: false }
                TextField { text: "Failed field"; failed: true }
                SecureField { text: "secret" }
                SearchField { placeholderText: "Search" }
            }
            TextArea { width: 150; height: 120; text: "Several lines of text that wrap at the edge, and more of them than fit into the room there is, so that the scroll bar has something to do and shows itself. And one more." }
        }
        Row {
            spacing: 20

            Column {
                width: 240
                spacing: 8

                Toggle { width: parent.width; text: "Off" }
                Toggle { width: parent.width; text: "On"; checked: true }
                Toggle { width: parent.width; text: "Disabled"; checked: true; enabled: false }
            }
            Column {
                spacing: 12

                SegmentedPicker { options: [{ value: 1, text: "Sayvane" }, { value: 2, text: "Groq" }, { value: 3, text: "OpenAI" }]; current: 2 }
                Picker { options: [{ value: 1, text: "Auto-detect" }, { value: 2, text: "English" }]; current: 2; label: "Language" }
                Picker { options: [{ value: 1, text: "Auto-detect" }]; current: 1; enabled: false; label: "Language" }
            }
            Card {
                width: 330

                SectionHeader { text: "Card" }
                StatusLine { tone: StatusLine.Success; text: "Key saved" }
                StatusLine { tone: StatusLine.Warning; text: "The clipboard kept the text" }
                StatusLine { tone: StatusLine.Failure; text: "This looks like another key, long enough to take more than one line." }
                Caption { width: parent.width; text: "A caption in the smallest type, which is long enough to need a second line of text." }
            }
        }
        DisclosureGroup { label: "Closed group" }
        DisclosureGroup {
            label: "Open group"
            expanded: true

            FormRow { text: "Label"; TextField { width: parent.width } }
        }
        Flow {
            width: parent.width
            spacing: 16

            Repeater {
                model: window.symbols

                Column {
                    required property string modelData
                    width: 150
                    spacing: 4

                    Row {
                        spacing: 10
                        Icon { symbol: parent.parent.modelData; size: 14; color: Theme.text }
                        Icon { symbol: parent.parent.modelData; size: 20; color: Theme.text }
                        Icon { symbol: parent.parent.modelData; size: 28; color: Theme.accent }
                    }
                    Caption { text: parent.modelData }
                }
            }
        }
    }
}
