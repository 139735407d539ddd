import QtQuick
import Sayvane

/// Bars over days, with an axis of days below and one of words beside it.
Item {
    id: view

    required property var chart
    readonly property int axisWidth: 44
    readonly property int axisHeight: 22

    implicitHeight: 220
    Accessible.role: Accessible.Chart
    Accessible.name: chart.summary

    Item {
        id: plot
        x: view.axisWidth
        y: 8
        width: view.width - x
        height: view.height - view.axisHeight - y

        Repeater {
            model: view.chart.marks

            Divider {
                id: mark

                required property var modelData

                y: Math.round(plot.height * (1 - modelData.height))
                width: plot.width

                Caption {
                    x: -view.axisWidth
                    width: view.axisWidth - 8
                    anchors.verticalCenter: parent.verticalCenter
                    horizontalAlignment: Text.AlignRight
                    lineHeight: 1
                    wrapMode: Text.NoWrap
                    text: mark.modelData.label
                    Accessible.ignored: true
                }
            }
        }
        Row {
            anchors.fill: parent

            Repeater {
                model: view.chart.bars

                Item {
                    id: day

                    required property var modelData

                    width: plot.width / view.chart.bars.length
                    height: plot.height
                    Accessible.role: Accessible.StaticText
                    Accessible.name: modelData.description

                    Divider {
                        visible: day.modelData.marked
                        anchors.horizontalCenter: parent.horizontalCenter
                        height: parent.height + 4
                    }
                    Rectangle {
                        anchors.horizontalCenter: parent.horizontalCenter
                        anchors.bottom: parent.bottom
                        width: Math.min(parent.width * 0.62, 48)
                        height: Math.round(parent.height * day.modelData.height)
                        radius: Math.min(3, height / 2)
                        color: Theme.accent
                        opacity: pointer.hovered ? 0.8 : 1
                    }
                    Caption {
                        visible: day.modelData.marked
                        anchors.horizontalCenter: parent.horizontalCenter
                        y: parent.height + 6
                        wrapMode: Text.NoWrap
                        text: day.modelData.label
                        Accessible.ignored: true
                    }
                    HoverHandler {
                        id: pointer
                    }
                    HelpTip {
                        y: parent.height * (1 - day.modelData.height) - implicitHeight - 6
                        visible: pointer.hovered
                        delay: 0
                        text: day.modelData.description
                    }
                }
            }
        }
    }
}
