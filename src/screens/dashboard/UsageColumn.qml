import QtQuick
import Sayvane

/// The usage of one span of time.
Column {
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
