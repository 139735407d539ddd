import QtQuick
import QtQuick.Templates as T
import Sayvane

/// A small sign of work under way. What ends within 300 ms never shows it.
T.BusyIndicator {
    id: control

    property color color: Theme.secondary

    running: false
    implicitWidth: 16
    implicitHeight: 16
    Accessible.ignored: !late.shown
    Accessible.role: Accessible.Indicator
    Accessible.name: qsTr("Working")
    onRunningChanged: late.shown = false

    Timer {
        id: late
        property bool shown: false
        interval: 300
        running: control.running
        onTriggered: shown = true
    }
    contentItem: Item {
        visible: control.running && late.shown

        Repeater {
            model: 8

            Rectangle {
                required property int index

                x: parent.width / 2 - 1
                width: 2
                height: parent.height * 0.3
                radius: 1
                color: control.color
                opacity: 1 - index * 0.11
                transform: Rotation {
                    origin.x: 1
                    origin.y: control.height / 2
                    angle: -index * 45
                }
            }
        }
        RotationAnimator on rotation {
            running: control.running && late.shown && !Theme.reducedMotion
            from: 0
            to: 360
            duration: 850
            loops: Animation.Infinite
        }
    }
}
