import QtQuick
import Sayvane

/// A few figures in a row.
Rectangle {
    id: card

    required property var figures

    implicitHeight: 74
    radius: Theme.cardRadius
    color: Theme.fill

    Row {
        anchors.fill: parent

        Repeater {
            model: card.figures

            Item {
                id: tile

                required property var modelData
                required property int index

                width: card.width / card.figures.length
                height: card.height
                Accessible.role: Accessible.StaticText
                Accessible.name: modelData.value + " " + modelData.label

                Rectangle {
                    visible: tile.index > 0
                    anchors.verticalCenter: parent.verticalCenter
                    width: 1
                    height: 34
                    color: Theme.separator
                }
                Column {
                    anchors.centerIn: parent
                    width: parent.width - 2 * Theme.labelSpacing
                    spacing: 2

                    FigureText {
                        width: parent.width
                        horizontalAlignment: Text.AlignHCenter
                        text: tile.modelData.value
                    }
                    Label {
                        width: parent.width
                        horizontalAlignment: Text.AlignHCenter
                        text: tile.modelData.label
                        color: Theme.secondary
                        font.pixelSize: Theme.calloutSize
                        Accessible.ignored: true
                    }
                }
            }
        }
    }
}
