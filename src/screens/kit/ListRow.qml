import QtQuick
import Sayvane

/// A row of a list that reacts to the pointer.
Rectangle {
    id: row

    property bool divided: true
    readonly property alias hovered: pointer.hovered

    implicitHeight: 40
    color: hovered ? Theme.hover : "transparent"

    HoverHandler {
        id: pointer
    }
    Divider {
        anchors.bottom: parent.bottom
        x: Theme.screenMargin
        width: parent.width - 2 * x
        visible: row.divided
    }
}
