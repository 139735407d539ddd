import QtQuick
import Sayvane

/// The edge and ground of something that text is typed into.
Rectangle {
    property bool focused: false
    property bool hovered: false
    property bool failed: false

    radius: Theme.fieldRadius
    color: Theme.surface
    border.width: 1
    border.color: failed ? Theme.error : hovered && enabled ? Theme.tertiary : Theme.outline

    FocusRing {
        shown: parent.focused
        around: Theme.fieldRadius
    }
}
