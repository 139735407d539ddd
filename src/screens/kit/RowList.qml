import QtQuick
import QtQuick.Templates as T
import QtQuick.Window
import Sayvane

/// A list with one row for the keyboard: arrows, pages, Home and End move it, Tab comes to it, and it stays in
/// view. A row taller than the view is read through on the way.
///
/// A delegate has an `index`, and is what takes the keyboard or a scope around it.
ListView {
    id: list

    /// Gets the keyboard when the last row has gone.
    required property Item heir
    /// Whether the row with the keyboard was reached by keys, and wants a mark.
    property bool keyed: false
    property bool entered: false

    clip: true
    reuseItems: true
    boundsBehavior: Flickable.StopAtBounds
    keyNavigationEnabled: false
    highlightMoveDuration: 0
    Accessible.role: Accessible.List
    T.ScrollBar.vertical: ScrollBar {}
    Keys.onPressed: event => {
        if (count === 0 || event.modifiers & (Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier))
            return;
        keyed = true;
        event.accepted = true;
        switch (event.key) {
        case Qt.Key_Up:
            return step(-1);
        case Qt.Key_Down:
            return step(1);
        case Qt.Key_PageUp:
            return page(-1);
        case Qt.Key_PageDown:
            return page(1);
        case Qt.Key_Home:
            goTo(0, 1);
            return positionViewAtBeginning();
        case Qt.Key_End:
            goTo(count - 1, -1);
            return positionViewAtEnd();
        default:
            event.accepted = false;
        }
    }
    onCountChanged: {
        if (count === 0 && (activeFocus || entered))
            heir.forceActiveFocus(Qt.TabFocusReason);
    }
    onCurrentItemChanged: {
        if (activeFocus)
            Qt.callLater(follow);
    }

    /// Gives the keyboard to the row that it was at last, or to what is in view.
    function enter() {
        if (count === 0)
            return;
        keyed = true;
        goTo(inView(currentItem) ? currentIndex : firstInView(), 1);
    }

    /// Takes the keyboard back from a menu or a question, unless somebody else has it.
    function regain() {
        if (Window.activeFocusItem && Window.activeFocusItem !== Window.contentItem)
            return;
        forceLayout(); // a row may have gone since the last frame
        if (currentItem)
            currentItem.forceActiveFocus(Qt.OtherFocusReason);
        else
            heir.forceActiveFocus(Qt.TabFocusReason);
    }

    /// To the next row or the one before; false where there is none.
    function walk(by) {
        const next = currentIndex + by;
        if (next < 0 || next >= count)
            return false;
        goTo(next, by);
        return true;
    }

    /// What is clicked there next within the time of a double-click was meant for the row that has just gone.
    function guard(control) {
        const place = mapFromItem(control, 0, 0);
        second.x = place.x;
        second.y = place.y;
        second.width = control.width;
        second.height = control.height;
        interval.restart();
    }

    /// What the view shows, to be shown again by `resume`.
    function whereabouts() {
        const row = indexAt(1, contentY);
        return row <= 0 && contentY <= originY ? null : {row: row, past: contentY - (itemAtIndex(row)?.y ?? contentY)};
    }

    function resume(place) {
        forceLayout();
        positionViewAtIndex(place.row, ListView.Beginning);
        contentY = Math.min(contentY + place.past, originY + Math.max(0, contentHeight - height));
    }

    function goTo(index, by) {
        forceLayout();
        currentIndex = index;
        const fromBelow = by < 0 && currentItem.height > height;
        positionViewAtIndex(index, fromBelow ? ListView.End : ListView.Contain);
        currentItem.forceActiveFocus(Qt.TabFocusReason);
    }

    /// A row may have gone with the keyboard in it.
    function follow() {
        if (!activeFocus || !currentItem)
            return;
        if (Window.activeFocusItem === list)
            currentItem.forceActiveFocus(Qt.OtherFocusReason);
        if (!keyed)
            return;
        if (!inView(currentItem) || currentItem.height <= height)
            positionViewAtIndex(currentIndex, ListView.Contain);
        const control = Window.activeFocusItem;
        if (control.focusReason !== undefined)
            control.focusReason = Qt.TabFocusReason; // so that its ring shows
    }

    function inView(row) {
        return row && row.y < contentY + height && row.y + row.height > contentY;
    }
    function firstInView() {
        const at = indexAt(1, contentY);
        return at < 0 ? 0 : itemAtIndex(at).y >= contentY ? at : Math.min(at + 1, count - 1);
    }
    function lastInView() {
        const at = indexAt(1, contentY + height - 1);
        if (at < 0)
            return count - 1;
        const row = itemAtIndex(at);
        return row.y + row.height <= contentY + height ? at : Math.max(at - 1, 0);
    }

    /// Scrolls within a row that is taller than the view; false where nothing of it is left that way.
    function readOn(by, distance) {
        const row = currentItem;
        if (!inView(row) || row.height <= height)
            return false;
        const left = by > 0 ? row.y + row.height - contentY - height : contentY - row.y;
        if (left < 1)
            return false;
        contentY += by * Math.min(left, distance);
        return true;
    }
    function step(by) {
        if (!readOn(by, 60))
            goTo(Math.max(0, Math.min(count - 1, currentIndex + by)), by);
    }
    function page(by) {
        if (readOn(by, height - 40))
            return;
        const edge = () => by > 0 ? lastInView() : firstInView();
        if (!inView(currentItem) || (edge() - currentIndex) * by <= 0)
            positionViewAtIndex(currentIndex, by > 0 ? ListView.Beginning : ListView.End);
        if ((edge() - currentIndex) * by > 0)
            goTo(edge(), by);
        else
            step(by);
    }

    Connections {
        target: list.Window.window

        function onActiveFocusItemChanged() {
            const item = list.Window.activeFocusItem;
            if (!item || item === list || item === list.Window.contentItem)
                return; // on the way, or to another window
            let row = item;
            while (row && row.parent !== list.contentItem)
                row = row.parent;
            const comes = row && !list.entered;
            list.entered = row !== null;
            if (!row)
                return;
            const reason = item.focusReason;
            if (row !== list.currentItem && row.index !== undefined) {
                // What was clicked stays under the pointer, and keeps the keyboard.
                const top = list.contentY;
                list.currentIndex = row.index;
                list.contentY = top;
                item.forceActiveFocus(reason ?? Qt.MouseFocusReason);
            }
            if (comes && (item === row || reason === Qt.TabFocusReason || reason === Qt.BacktabFocusReason))
                list.enter();
        }
    }
    PointHandler {
        acceptedButtons: Qt.AllButtons
        onActiveChanged: if (active) list.keyed = false
    }
    MultiPointTouchArea {
        id: second
        parent: list
        z: 1
        visible: interval.running
        onPressed: interval.restart()

        Timer {
            id: interval
            interval: Qt.styleHints.mouseDoubleClickInterval
        }
    }
}
