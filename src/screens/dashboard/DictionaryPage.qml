import QtQuick
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
                text: qsTr("Dictionary")
            }
            Callout {
                width: parent.width
                text: qsTr("Names, brands and jargon Sayvane should spell correctly. These are sent with every transcription.")
            }
        }
        Row {
            width: parent.width
            spacing: 8

            TextField {
                id: field
                width: parent.width - add.width - parent.spacing
                focus: true
                placeholderText: qsTr("Add a term")
                text: page.model.newTerm
                onTextEdited: page.model.newTerm = text
                onAccepted: page.add()
                Keys.onDownPressed: list.enter()
            }
            Button {
                id: add
                text: qsTr("Add")
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
        title: qsTr("No terms yet.")
    }
    RowList {
        id: list
        anchors.top: edge.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        heir: field
        model: page.model.rows
        Accessible.name: qsTr("Terms")

        delegate: FocusScope {
            id: row

            required property string display
            required property int index

            ListView.onPooled: visible = false
            ListView.onReused: visible = true
            width: list.width
            implicitHeight: Math.max(40, term.implicitHeight + 20)
            Accessible.role: Accessible.ListItem
            Accessible.name: display

            ListRow {
                anchors.fill: parent
                divided: row.index < list.count - 1

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
                    focus: true
                    activeFocusOnTab: row.ListView.isCurrentItem || activeFocus
                    symbol: "minus.circle"
                    help: qsTr("Remove")
                    Accessible.description: row.display
                    Keys.onTabPressed: event => event.accepted = list.walk(1)
                    Keys.onBacktabPressed: event => event.accepted = list.walk(-1)
                    onClicked: {
                        list.guard(remove);
                        page.model.remove(row.display);
                    }
                }
            }
        }
    }

    function whereabouts() {
        return list.whereabouts();
    }
    function resume(place) {
        list.resume(place);
    }
}
