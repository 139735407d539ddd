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

    function reveal(item) {
        const top = item.mapToItem(contentItem, 0, 0).y;
        const bottom = top + item.height;
        const isTall = item.height + 2 * margin > height;
        if (isTall && top < contentY + height && bottom > contentY)
            return; // there is no room for more than a part of it
        if (isTall || top - margin < contentY)
            contentY = Math.max(0, Math.min(top - margin, contentHeight - height));
        else if (bottom + margin > contentY + height)
            contentY = Math.min(contentHeight - height, bottom + margin - height);
    }

    Connections {
        target: control.Window.window
        function onActiveFocusItemChanged() {
            const item = control.Window.window.activeFocusItem;
            if (item && item.focusReason === Qt.MouseFocusReason)
                return; // what was clicked is in view, and the page stays under the pointer
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
