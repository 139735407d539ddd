import QtQuick
import QtQuick.Templates as T
import Sayvane

/// A choice of a few, side by side. `options` is a list of {value, text}; arrow keys move the choice.
///
/// `current` belongs to the model: bind it, and answer `picked`.
FocusScope {
    id: control

    property var options: []
    property var current
    property string label: ""

    signal picked(var value)

    implicitWidth: row.implicitWidth + 4
    implicitHeight: Theme.controlHeight
    opacity: enabled ? 1 : Theme.disabledOpacity
    Accessible.role: Accessible.Grouping
    Accessible.name: label

    function step(by) {
        const at = options.findIndex(option => option.value === current);
        const next = options[Math.max(0, Math.min(options.length - 1, at + by))];
        if (next && next.value !== current)
            picked(next.value);
        for (let i = 0; i < segments.count; ++i)
            if (next && segments.itemAt(i).modelData.value === next.value)
                segments.itemAt(i).forceActiveFocus(Qt.TabFocusReason);
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.buttonRadius
        color: Theme.fill
        border.width: Theme.highContrast ? 1 : 0
        border.color: Theme.outline
    }
    Row {
        id: row
        x: 2
        height: parent.height

        Repeater {
            id: segments
            model: control.options

            T.RadioButton {
                id: segment

                required property var modelData
                readonly property bool chosen: modelData.value === control.current

                implicitWidth: word.implicitWidth + 24
                width: implicitWidth
                height: control.height
                hoverEnabled: true
                focusPolicy: Qt.StrongFocus
                activeFocusOnTab: chosen
                autoExclusive: false
                checked: chosen
                text: modelData.text
                onClicked: {
                    checked = Qt.binding(() => chosen); // the model decides
                    if (!chosen)
                        control.picked(modelData.value);
                }
                Keys.onLeftPressed: control.step(-1)
                Keys.onRightPressed: control.step(1)

                background: Rectangle {
                    anchors.fill: parent
                    anchors.topMargin: 2
                    anchors.bottomMargin: 2
                    radius: Theme.buttonRadius - 1
                    color: segment.chosen ? Theme.accent
                         : segment.down ? Theme.pressed : segment.hovered ? Theme.hover : "transparent"

                    FocusRing {
                        shown: segment.visualFocus
                    }
                }
                Text {
                    id: word
                    anchors.centerIn: parent
                    text: segment.text
                    textFormat: Text.PlainText
                    color: segment.chosen ? Theme.onAccent : Theme.text
                    font.pixelSize: Theme.textSize
                    font.weight: segment.chosen ? Font.Medium : Font.Normal
                }
            }
        }
    }
}
