import QtQuick
import QtQuick.Templates as T
import Sayvane

/// A button in one of five kinds. While it is busy it keeps its width and cannot be pressed.
T.Button {
    id: control

    enum Kind { Plain, Prominent, Destructive, Borderless, Link }

    property int kind: Button.Plain
    property string symbol: ""
    property string help: ""
    property bool busy: false

    readonly property bool bare: kind === Button.Borderless || kind === Button.Link
    property color ink: kind === Button.Prominent ? Theme.onAccent
                      : kind === Button.Destructive ? Theme.error
                      : kind === Button.Link ? Theme.accent : Theme.text

    implicitWidth: Math.max(implicitContentWidth + leftPadding + rightPadding, implicitHeight)
    implicitHeight: Theme.controlHeight
    leftPadding: bare ? 6 : 12
    rightPadding: leftPadding
    spacing: 6
    opacity: enabled || busy ? 1 : Theme.disabledOpacity
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    font.pixelSize: Theme.textSize
    // Qt tells of every button that it is one to press.
    Accessible.onRoleChanged: if (kind === Button.Link) Accessible.role = Accessible.Link
    Accessible.name: text !== "" ? text : help
    Accessible.description: text !== "" ? help : ""
    Keys.onPressed: event => {
        if (busy || event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
            event.accepted = true;
        if (event.accepted && !busy && !event.isAutoRepeat)
            clicked();
    }

    contentItem: Item {
        implicitWidth: row.implicitWidth
        implicitHeight: row.implicitHeight
        baselineOffset: row.y + word.y + word.baselineOffset

        Row {
            id: row
            anchors.centerIn: parent
            spacing: control.spacing
            opacity: control.busy ? 0 : 1

            Icon {
                anchors.verticalCenter: parent.verticalCenter
                visible: control.symbol !== ""
                symbol: control.symbol
                size: 16
                color: control.ink
            }
            Text {
                id: word
                anchors.verticalCenter: parent.verticalCenter
                visible: control.text !== ""
                text: control.text
                textFormat: Text.PlainText
                color: control.ink
                font.pixelSize: control.font.pixelSize
                font.weight: control.kind === Button.Prominent ? Font.Medium : Font.Normal
                font.underline: control.kind === Button.Link && (control.hovered || control.visualFocus)
            }
        }
        Spinner {
            anchors.centerIn: parent
            running: control.busy
            color: control.ink
        }
    }
    background: Rectangle {
        radius: Theme.buttonRadius
        color: control.kind === Button.Prominent ? Theme.accent : control.bare ? "transparent" : Theme.surface
        border.width: control.bare || control.kind === Button.Prominent ? 0 : 1
        border.color: Theme.outline

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            visible: control.enabled && (control.hovered || control.down)
            color: control.down ? Theme.pressed : Theme.hover
        }
        FocusRing {
            shown: control.visualFocus
        }
    }
    MouseArea {
        anchors.fill: parent
        visible: control.busy
    }
    HelpTip {
        visible: control.hovered && control.help !== ""
        text: control.help
    }
}
