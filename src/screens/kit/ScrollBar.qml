import QtQuick
import QtQuick.Templates as T
import Sayvane

/// A scroll bar that stays visible while there is something to scroll.
T.ScrollBar {
    id: control

    implicitWidth: 12
    implicitHeight: 12
    padding: 3
    minimumSize: 0.06
    policy: T.ScrollBar.AsNeeded
    visible: size < 1
    hoverEnabled: true
    Accessible.role: Accessible.ScrollBar
    Accessible.name: qsTr("Scroll")

    contentItem: Rectangle {
        radius: 3
        color: Theme.text
        opacity: control.pressed ? 0.6 : control.hovered ? 0.45 : 0.28
    }
}
