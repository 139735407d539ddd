import QtQuick
import Sayvane

/// The history in figures.
ScrollPane {
    id: page

    required property InsightsView model

    scrollsByKeys: true
    label: qsTr("Insights")

    Title {
        text: qsTr("Insights")
    }
    Grid {
        id: grid

        // As many columns as there is room for, none narrower than 150.
        readonly property real cell: (width - (columns - 1) * 12) / columns

        width: parent.width
        columns: Math.max(1, Math.min(6, Math.floor((width + 12) / 162)))
        spacing: 12

        Repeater {
            model: page.model.figures

            Rectangle {
                id: tile

                required property var modelData

                width: grid.cell
                height: figure.height + 2 * Theme.tilePadding
                radius: Theme.cardRadius
                color: Theme.fill
                Accessible.role: Accessible.StaticText
                Accessible.name: modelData.value + " " + modelData.label

                Column {
                    id: figure
                    x: Theme.tilePadding
                    y: Theme.tilePadding
                    width: parent.width - 2 * x
                    spacing: 4

                    FigureText {
                        width: parent.width
                        text: tile.modelData.value
                    }
                    Label {
                        width: parent.width
                        text: tile.modelData.label
                        color: Theme.secondary
                        font.pixelSize: Theme.calloutSize
                        Accessible.ignored: true
                    }
                }
            }
        }
    }
    Card {
        width: parent.width
        spacing: 10

        SectionHeader {
            width: parent.width
            text: qsTr("Words per day, last 14 days")
        }
        BarChart {
            width: parent.width
            chart: page.model.chart
        }
    }
    UsageCard {
        width: parent.width
        usage: page.model.usage
    }
}
