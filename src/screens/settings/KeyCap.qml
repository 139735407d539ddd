import QtQuick
import Sayvane

/// Keys as they are pressed together.
Rectangle {
    property alias text: keys.text

    implicitWidth: keys.implicitWidth + 20
    implicitHeight: Theme.controlHeight
    radius: Theme.buttonRadius
    color: Theme.surface
    border.width: 1
    border.color: Theme.outline

    Label {
        id: keys
        anchors.centerIn: parent
        font.weight: Font.Medium
    }
}
