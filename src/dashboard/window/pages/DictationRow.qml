import QtQuick
import Sayvane

/// One dictation. Its buttons show while the pointer is over it or the keyboard in it.
ListRow {
    id: row

    required property int index
    required property string time
    required property string transcript
    required property string timing
    required property bool lastOfDay

    readonly property bool chosen: ListView.isCurrentItem && ListView.view.activeFocus
    readonly property bool active: hovered || chosen || buttons.focused

    signal copyWanted
    signal deleteWanted

    implicitHeight: texts.height + 20
    divided: !lastOfDay
    color: active ? Theme.hover : "transparent"
    Keys.onDeletePressed: deleteWanted()
    Keys.onPressed: event => {
        if (event.matches(StandardKey.Copy)) {
            copyWanted();
            event.accepted = true;
        }
    }
    ListView.onReused: body.deselect()
    Accessible.role: Accessible.ListItem
    Accessible.name: time + ", " + transcript
    Accessible.focusable: true

    FocusRing {
        anchors.margins: 2
        around: Theme.buttonRadius - 3
        shown: row.chosen
    }
    Label {
        x: Theme.screenMargin
        y: texts.y + 1
        width: 62
        text: row.time
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
        width: Math.min(row.width - x - 8 - 60 - Theme.screenMargin, Theme.textWidth)
        spacing: 3

        TextEdit {
            id: body
            width: parent.width
            text: row.transcript
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
            text: row.timing
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
            symbol: "doc.on.doc"
            help: "Copy transcript"
            activeFocusOnTab: row.active
            onClicked: row.copyWanted()
        }
        IconButton {
            id: remove
            symbol: "trash"
            help: "Delete"
            activeFocusOnTab: row.active
            onClicked: row.deleteWanted()
        }
    }
}
