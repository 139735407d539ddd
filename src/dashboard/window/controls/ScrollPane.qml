import QtQuick
import QtQuick.Templates as T
import QtQuick.Window
import Sayvane

/// A column that scrolls when the window is too low for it. The item with the keyboard is always in view.
Flickable {
    id: control

    default property alias items: column.data
    property alias spacing: column.spacing
    property int margin: Theme.screenMargin
    property int widest: 100000
    /// Where nothing in it takes the keyboard.
    property bool scrollsByKeys: false

    contentWidth: width
    contentHeight: column.height + 2 * margin
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    T.ScrollBar.vertical: ScrollBar {}
    activeFocusOnTab: scrollsByKeys && contentHeight > height
    Keys.onPressed: event => {
        const steps = {[Qt.Key_Up]: -40, [Qt.Key_Down]: 40, [Qt.Key_PageUp]: -height, [Qt.Key_PageDown]: height,
                       [Qt.Key_Home]: -contentHeight, [Qt.Key_End]: contentHeight};
        if (!activeFocus || !(event.key in steps))
            return;
        contentY = Math.max(0, Math.min(contentHeight - height, contentY + steps[event.key]));
        event.accepted = true;
    }
    FocusRing {
        parent: control
        z: 1
        anchors.margins: 2
        shown: control.activeFocus
    }

    // What the pointer is on is in view.
    function reveal(item) {
        if (item.focusReason === Qt.MouseFocusReason || item.height > height)
            return;
        const top = item.mapToItem(contentItem, 0, 0).y;
        if (top - margin < contentY)
            contentY = Math.max(0, top - margin);
        else if (top + item.height + margin > contentY + height)
            contentY = Math.min(contentHeight - height, top + item.height + margin - height);
    }

    Connections {
        target: control.Window.window
        function onActiveFocusItemChanged() {
            const item = control.Window.window.activeFocusItem;
            let shown = item; // of a text that scrolls in a frame, the frame
            for (let up = item; up; up = up.parent) {
                if (up === column)
                    return control.reveal(shown);
                if (up instanceof Flickable)
                    shown = up;
            }
        }
    }
    Column {
        id: column
        x: control.margin
        y: control.margin
        width: Math.min(control.width - 2 * control.margin, control.widest)
        spacing: Theme.screenMargin
    }
}
