import QtQuick
import Sayvane

/// What a place without contents is for, and what to do next.
Item {
    id: state

    property string symbol: ""
    property string title: ""
    property string hint: ""

    Column {
        anchors.centerIn: parent
        width: Math.min(parent.width - 2 * Theme.screenMargin, 420)
        spacing: 8

        Icon {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: state.symbol !== ""
            symbol: state.symbol
            size: 32
            color: Theme.tertiary
        }
        Label {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: state.title
            color: Theme.secondary
        }
        Label {
            width: parent.width
            visible: text !== ""
            horizontalAlignment: Text.AlignHCenter
            text: state.hint
            color: Theme.secondary
            font.pixelSize: Theme.calloutSize
        }
    }
}
