import QtQuick
import Sayvane

/// The ring around a control that has the keyboard.
Rectangle {
    property bool shown: false
    property int around: Theme.buttonRadius

    anchors.fill: parent
    anchors.margins: -3
    visible: shown
    color: "transparent"
    radius: around + 3
    border.width: 2
    border.color: Theme.accent
}
