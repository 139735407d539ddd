import QtQuick
import QtQuick.Templates as T
import Sayvane

/// What a control does, shown while the pointer rests on it.
T.ToolTip {
    id: tip

    x: parent ? (parent.width - implicitWidth) / 2 : 0
    y: -implicitHeight - 6
    implicitWidth: Math.min(implicitContentWidth + leftPadding + rightPadding, 320)
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    horizontalPadding: 8
    verticalPadding: 5
    margins: 6
    delay: 700
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent | T.Popup.CloseOnReleaseOutsideParent

    contentItem: Label {
        text: tip.text
        font.pixelSize: Theme.captionSize
        color: Theme.window
        Accessible.ignored: true
    }
    background: Rectangle {
        radius: Theme.buttonRadius
        color: Theme.text
    }
}
