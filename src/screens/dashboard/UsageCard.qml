import QtQuick
import Sayvane

/// What was used this month and in all.
Card {
    id: card

    required property var usage

    SectionHeader {
        width: parent.width
        text: qsTr("Usage")
    }
    Row {
        width: parent.width

        UsageColumn {
            width: (parent.width - 1) / 2
            title: qsTr("This month")
            figures: card.usage.monthFigures
            included: card.usage.included
        }
        Rectangle {
            width: 1
            height: 76
            color: Theme.separator
        }
        UsageColumn {
            width: (parent.width - 1) / 2
            leftPadding: Theme.cardPadding
            title: qsTr("All time")
            figures: card.usage.allTimeFigures
            included: card.usage.included
        }
    }
    Repeater {
        model: card.usage.footnotes

        SelectableText {
            required property string modelData
            width: card.width - 2 * card.padding
            text: modelData
            color: Theme.secondary
            font.pixelSize: Theme.captionSize
        }
    }
}
