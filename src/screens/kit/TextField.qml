import QtQuick
import QtQuick.Templates as T
import Sayvane

/// One line of text with a rounded edge. `label` is what a screen reader calls it.
T.TextField {
    id: control

    property string label: placeholderText
    property bool failed: false

    implicitWidth: 200
    implicitHeight: Theme.controlHeight
    leftPadding: 8
    rightPadding: 8
    verticalAlignment: TextInput.AlignVCenter
    opacity: enabled ? 1 : Theme.disabledOpacity
    color: Theme.text
    selectionColor: Theme.accent
    selectedTextColor: Theme.onAccent
    placeholderTextColor: Theme.tertiary
    font.pixelSize: Theme.textSize
    selectByMouse: true
    hoverEnabled: true
    Accessible.role: Accessible.EditableText
    Accessible.name: label

    background: FieldFrame {
        focused: control.activeFocus
        hovered: control.hovered
        failed: control.failed
    }
    Text {
        x: control.leftPadding
        width: control.availableWidth
        height: control.height
        visible: control.length === 0 && control.preeditText === ""
        text: control.placeholderText
        textFormat: Text.PlainText
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        color: control.placeholderTextColor
        font: control.font
        Accessible.ignored: true
    }
}
