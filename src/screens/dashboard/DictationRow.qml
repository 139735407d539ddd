import QtQuick
import Sayvane

/// One dictation, the first of a day under the day's name. Its buttons are there while the pointer is over it
/// or the keyboard in it.
Item {
    id: item

    required property int index
    required property string time
    required property string transcript
    required property string timing
    required property string day
    required property bool firstOfDay
    required property bool lastOfDay

    readonly property RowList list: ListView.view as RowList
    readonly property bool chosen: ListView.isCurrentItem && list.activeFocus
    /// Whether its menu is open, for which a selection stays.
    property bool asked: false
    property alias selected: body.selectedText

    signal copyWanted
    signal deleteWanted
    signal menuWanted(real x, real y)

    /// Copies what is selected, or else all of it, and shows that it did.
    function copy() {
        if (selected !== "")
            body.copy();
        else
            copyWanted();
        done.restart();
    }

    implicitHeight: row.y + row.height
    activeFocusOnTab: ListView.isCurrentItem || activeFocus
    Keys.onPressed: event => {
        event.accepted = true;
        if (event.matches(StandardKey.Copy))
            copy();
        else if (event.key === Qt.Key_Menu || (event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier))
            menuWanted(texts.x, row.y + texts.y);
        else
            event.accepted = false;
    }
    // A row that waits to be used again is there for nobody, screen readers included.
    ListView.onPooled: {
        visible = false;
        done.stop();
    }
    ListView.onReused: {
        visible = true;
        body.deselect();
    }
    Accessible.role: Accessible.ListItem
    Accessible.name: time + ", " + transcript
    Accessible.focusable: true

    Timer {
        id: done
        interval: 1500
    }
    DayHeader {
        id: header
        width: item.width
        visible: item.firstOfDay
        text: item.day
    }
    ListRow {
        id: row

        readonly property bool active: hovered || item.chosen || item.asked

        y: item.firstOfDay ? header.height : 0
        width: item.width
        height: texts.height + 20
        divided: !item.lastOfDay
        color: active ? Theme.hover : "transparent"

        FocusRing {
            anchors.margins: 2
            around: Theme.buttonRadius - 3
            shown: item.activeFocus && item.list.keyed
        }
        Label {
            x: Theme.screenMargin
            y: texts.y + 1
            width: 62
            text: item.time
            color: Theme.secondary
            font.family: Theme.monospaced
            font.pixelSize: Theme.calloutSize
            wrapMode: Text.NoWrap
            Accessible.ignored: true
        }
        // Of its height from the start: a column has it only once it is drawn, and the list would shift.
        Item {
            id: texts
            x: Theme.screenMargin + 62 + 8
            y: 10
            width: row.width - x - 8 - 52 - Theme.screenMargin
            height: body.height + (timing.visible ? 3 + timing.height : 0)

            TextEdit {
                id: body
                width: Math.min(parent.width, Theme.readingWidth)
                text: item.transcript
                textFormat: TextEdit.PlainText
                wrapMode: TextEdit.Wrap
                readOnly: true
                selectByMouse: true
                color: Theme.text
                selectionColor: Theme.accent
                selectedTextColor: Theme.onAccent
                font.pixelSize: Theme.textSize
                // Without a selection it is the row's to copy.
                Keys.onPressed: event => {
                    event.accepted = event.matches(StandardKey.Copy);
                    if (event.accepted)
                        item.copy();
                }
                onActiveFocusChanged: if (!activeFocus && !item.asked) deselect()
                Accessible.ignored: true
            }
            Caption {
                id: timing
                y: body.height + 3
                width: parent.width
                visible: text !== ""
                text: item.timing
                color: Theme.tertiary
            }
        }
        Row {
            id: buttons

            anchors.right: parent.right
            anchors.rightMargin: Theme.screenMargin
            y: 5
            spacing: 4
            visible: row.active || done.running

            IconButton {
                implicitWidth: 24
                symbol: done.running ? "checkmark" : "doc.on.doc"
                ink: done.running ? Theme.success : Theme.text
                help: done.running ? qsTr("Copied") : qsTr("Copy transcript")
                activeFocusOnTab: item.ListView.isCurrentItem || activeFocus
                onClicked: {
                    item.copyWanted();
                    done.restart();
                }
            }
            IconButton {
                id: remove
                implicitWidth: 24
                symbol: "trash"
                help: qsTr("Delete")
                activeFocusOnTab: item.ListView.isCurrentItem || activeFocus
                onClicked: {
                    item.list.guard(remove);
                    item.deleteWanted();
                }
            }
        }
    }

    // The day above its dictations.
    component DayHeader: Label {
        leftPadding: Theme.screenMargin
        rightPadding: Theme.screenMargin
        topPadding: 14
        bottomPadding: 6
        wrapMode: Text.NoWrap
        elide: Text.ElideRight
        color: Theme.secondary
        font.pixelSize: Theme.calloutSize
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }
}
