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

    contentWidth: width
    contentHeight: column.height + 2 * margin
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    T.ScrollBar.vertical: ScrollBar {}

    function reveal(item) {
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
            for (let up = item; up; up = up.parent)
                if (up === column)
                    return control.reveal(item);
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
