import QtQuick
import QtQuick.Templates as T
import Sayvane

/// The custom vocabulary, term by term.
FocusScope {
    id: page

    required property DictionaryView model

    focus: true

    Column {
        id: header
        x: Theme.screenMargin
        y: Theme.screenMargin
        width: parent.width - 2 * x
        spacing: 16

        Column {
            width: parent.width
            spacing: 4

            Title {
                width: parent.width
                text: "Dictionary"
            }
            Callout {
                width: parent.width
                text: "Names, brands and jargon Sayvane should spell correctly. These are sent with every transcription."
            }
        }
        Row {
            width: parent.width
            spacing: 8

            TextField {
                id: field
                width: parent.width - add.width - parent.spacing
                focus: true
                placeholderText: "Add a term"
                text: page.model.newTerm
                onTextEdited: page.model.newTerm = text
                onAccepted: page.add()
            }
            Button {
                id: add
                text: "Add"
                enabled: page.model.canAdd
                onClicked: page.add()
            }
        }
    }

    function add() {
        const before = list.count;
        model.add();
        if (list.count > before)
            list.positionViewAtEnd();
        field.forceActiveFocus();
    }

    Divider {
        id: edge
        anchors.top: header.bottom
        anchors.topMargin: Theme.screenMargin
        width: parent.width
    }
    EmptyState {
        anchors.top: edge.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        visible: page.model.empty
        title: "No terms yet."
    }
    ListView {
        id: list
        anchors.top: edge.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        clip: true
        reuseItems: true
        boundsBehavior: Flickable.StopAtBounds
        model: page.model.rows
        Accessible.role: Accessible.List
        Accessible.name: "Terms"
        T.ScrollBar.vertical: ScrollBar {}

        delegate: ListRow {
            id: row

            required property string display
            required property int index

            ListView.onPooled: visible = false
            ListView.onReused: visible = true
            width: list.width
            implicitHeight: Math.max(40, term.implicitHeight + 20)
            divided: index < list.count - 1
            Accessible.role: Accessible.ListItem
            Accessible.name: display

            Label {
                id: term
                x: Theme.screenMargin
                width: parent.width - 2 * x - remove.width - 8
                anchors.verticalCenter: parent.verticalCenter
                text: row.display
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
            IconButton {
                id: remove
                anchors.right: parent.right
                anchors.rightMargin: Theme.screenMargin - 6
                anchors.verticalCenter: parent.verticalCenter
                symbol: "minus.circle"
                help: "Remove"
                Accessible.description: row.display
                onClicked: page.model.remove(row.display)
            }
        }
    }
}
