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
    /// Where little in it takes the keyboard.
    property bool scrollsByKeys: false
    property string label: ""

    contentWidth: width
    contentHeight: column.height + 2 * margin
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    T.ScrollBar.vertical: ScrollBar {}
    Accessible.role: Accessible.Pane
    Accessible.name: label
    Keys.onPressed: event => {
        const steps = {[Qt.Key_PageUp]: -height, [Qt.Key_PageDown]: height,
                       [Qt.Key_Home]: -contentHeight, [Qt.Key_End]: contentHeight};
        if (stop.activeFocus)
            Object.assign(steps, {[Qt.Key_Up]: -40, [Qt.Key_Down]: 40});
        if (!(event.key in steps))
            return;
        scrollTo(contentY + steps[event.key]);
        event.accepted = true;
    }
    // What a Flickable does not know: by what it got the keyboard.
    T.Control {
        id: stop
        parent: control
        anchors.fill: parent
        z: 1
        focus: control.scrollsByKeys
        activeFocusOnTab: control.scrollsByKeys && control.contentHeight > control.height || activeFocus
        Accessible.role: Accessible.Pane
        Accessible.name: control.label
        Accessible.ignored: !control.scrollsByKeys
        Accessible.focusable: true
        Keys.forwardTo: [control]

        FocusRing {
            anchors.margins: 2
            shown: stop.visualFocus
        }
    }

    function scrollTo(y) {
        contentY = Math.max(0, Math.min(contentHeight - height, y));
    }

    /// What the view shows, to be shown again by `resume`.
    function whereabouts() {
        return contentY;
    }
    function resume(place) {
        column.forceLayout();
        scrollTo(place);
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
