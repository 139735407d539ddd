import QtQuick
import QtQuick.Templates as T
import Sayvane

/// A switch after its label. The label takes the row, so that switches below each other align.
T.Switch {
    id: control

    property string help: ""

    implicitWidth: implicitContentWidth + spacing + 38
    implicitHeight: Math.max(Theme.controlHeight, implicitContentHeight)
    spacing: Theme.labelSpacing
    opacity: enabled ? 1 : Theme.disabledOpacity
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    font.pixelSize: Theme.textSize
    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.description: help
    Accessible.checkable: true
    Accessible.checked: checked
    Keys.onReturnPressed: event => {
        if (event.isAutoRepeat)
            return;
        toggle();
        toggled();
    }

    contentItem: Label {
        rightPadding: 38 + control.spacing
        text: control.text
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
    indicator: Rectangle {
        x: control.width - width
        y: (control.height - height) / 2
        width: 38
        height: 22
        radius: 11
        color: control.checked ? Theme.accent : Theme.pressed
        border.width: control.checked ? 0 : 1
        border.color: Theme.outline

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            visible: control.enabled && (control.hovered || control.down)
            color: control.down ? Theme.pressed : Theme.hover
        }
        Rectangle {
            x: control.checked ? parent.width - width - 2 : 2
            y: 2
            width: 18
            height: 18
            radius: 9
            color: "white"
            border.width: 1
            border.color: Theme.outline

            Behavior on x {
                NumberAnimation {
                    duration: Theme.motion
                    easing.type: Easing.OutQuad
                }
            }
        }
        FocusRing {
            shown: control.visualFocus
            around: 11
        }
    }
    HelpTip {
        visible: control.hovered && control.help !== ""
        text: control.help
    }
}
