import QtQuick
import QtQuick.Templates as T
import Sayvane

/// One thing that a menu offers.
T.MenuItem {
    id: entry

    property string symbol: ""
    readonly property color ink: highlighted ? Theme.onAccent : Theme.text

    implicitWidth: 132
    implicitHeight: Theme.controlHeight
    Accessible.name: text

    background: Rectangle {
        radius: Theme.buttonRadius - 1
        color: entry.highlighted ? Theme.accent : "transparent"
    }
    contentItem: Item {
        Icon {
            x: 8
            anchors.verticalCenter: parent.verticalCenter
            symbol: entry.symbol
            size: 16
            color: entry.ink
        }
        Text {
            x: 32
            width: parent.width - x - 8
            height: parent.height
            text: entry.text
            textFormat: Text.PlainText
            elide: Text.ElideRight
            verticalAlignment: Text.AlignVCenter
            color: entry.ink
            font.pixelSize: Theme.textSize
        }
    }
}
