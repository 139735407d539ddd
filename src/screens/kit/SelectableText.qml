import QtQuick
import Sayvane

/// A text that can be selected and copied, but not changed.
TextEdit {
    id: control

    color: Theme.text
    selectionColor: Theme.accent
    selectedTextColor: Theme.onAccent
    font.pixelSize: Theme.textSize
    textFormat: TextEdit.PlainText
    wrapMode: TextEdit.Wrap
    readOnly: true
    selectByMouse: true
    activeFocusOnTab: true
    onActiveFocusChanged: if (!activeFocus) deselect()
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.readOnly: true

    HoverHandler {
        cursorShape: Qt.IBeamCursor
    }
    FocusRing {
        shown: control.activeFocus
        around: 2
    }
}
