import QtQuick
import Sayvane

/// One dictation, the first of a day under the day's name. Its buttons show while the pointer is over it or
/// the keyboard in it.
Item {
    id: item

    required property int index
    required property string time
    required property string transcript
    required property string timing
    required property string day
    required property bool firstOfDay
    required property bool lastOfDay

    readonly property bool chosen: ListView.isCurrentItem && ListView.view.activeFocus

    signal copyWanted
    signal deleteWanted

    implicitHeight: row.y + row.height
    Keys.onPressed: event => {
        if (event.matches(StandardKey.Copy)) {
            copyWanted();
            event.accepted = true;
        }
    }
    // A row that waits to be used again is there for nobody, screen readers included.
    ListView.onPooled: visible = false
    ListView.onReused: {
        visible = true;
        body.deselect();
    }
    Accessible.role: Accessible.ListItem
    Accessible.name: time + ", " + transcript
    Accessible.focusable: true

    DayHeader {
        id: header
        width: item.width
        visible: item.firstOfDay
        text: item.day
    }
    ListRow {
        id: row

        readonly property bool active: hovered || item.chosen || buttons.focused

        y: item.firstOfDay ? header.height : 0
        width: item.width
        height: texts.height + 20
        divided: !item.lastOfDay
        color: active ? Theme.hover : "transparent"

        FocusRing {
            anchors.margins: 2
            around: Theme.buttonRadius - 3
            shown: item.chosen
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
        Column {
            id: texts
            x: Theme.screenMargin + 62 + 8
            y: 10
            width: row.width - x - 8 - buttons.width - Theme.screenMargin
            spacing: 3

            TextEdit {
                id: body
                width: parent.width
                text: item.transcript
                textFormat: TextEdit.PlainText
                wrapMode: TextEdit.Wrap
                readOnly: true
                selectByMouse: true
                color: Theme.text
                selectionColor: Theme.accent
                selectedTextColor: Theme.onAccent
                font.pixelSize: Theme.textSize
                activeFocusOnPress: true
                onActiveFocusChanged: if (!activeFocus) deselect()
                Accessible.ignored: true
            }
            Caption {
                width: parent.width
                visible: text !== ""
                text: item.timing
                color: Theme.tertiary
            }
        }
        Row {
            id: buttons

            readonly property bool focused: copy.activeFocus || remove.activeFocus

            anchors.right: parent.right
            anchors.rightMargin: Theme.screenMargin
            y: 5
            spacing: 4
            opacity: row.active ? 1 : 0

            IconButton {
                id: copy
                implicitWidth: 24
                symbol: "doc.on.doc"
                help: "Copy transcript"
                activeFocusOnTab: row.active
                onClicked: item.copyWanted()
            }
            IconButton {
                id: remove
                implicitWidth: 24
                symbol: "trash"
                help: "Delete"
                activeFocusOnTab: row.active
                onClicked: item.deleteWanted()
            }
        }
    }
}
