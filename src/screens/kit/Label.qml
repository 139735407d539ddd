import QtQuick
import Sayvane

/// A text of the window's own; it turns to the right where its script does.
Text {
    color: enabled ? Theme.text : Theme.tertiary
    font.pixelSize: Theme.textSize
    textFormat: Text.PlainText
    wrapMode: Text.WordWrap
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
