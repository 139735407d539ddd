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

    // The usage of one span of time.
    component UsageColumn: Column {
        id: column

        property string title: ""
        property var figures: []
        property string included: ""

        rightPadding: Theme.cardPadding
        spacing: 6

        Caption {
            text: column.title
            font.weight: Font.DemiBold
        }
        Repeater {
            model: column.figures

            Item {
                id: line

                required property var modelData

                width: column.width - column.leftPadding - column.rightPadding
                height: value.implicitHeight
                Accessible.role: Accessible.StaticText
                Accessible.name: modelData.value + " " + modelData.label

                Label {
                    id: value
                    text: line.modelData.value
                    wrapMode: Text.NoWrap
                    font.weight: Font.Medium
                    Accessible.ignored: true
                }
                Label {
                    anchors.left: value.right
                    anchors.leftMargin: 6
                    anchors.right: parent.right
                    anchors.baseline: value.baseline
                    text: line.modelData.label
                    wrapMode: Text.NoWrap
                    elide: Text.ElideRight
                    color: Theme.secondary
                    font.pixelSize: Theme.captionSize
                    Accessible.ignored: true
                }
            }
        }
        Caption {
            visible: text !== ""
            text: column.included
        }
    }
}
