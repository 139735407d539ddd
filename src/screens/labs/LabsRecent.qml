import QtQuick
import Sayvane

/// The last questions and their answers.
Column {
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
