import QtQuick
import Sayvane

/// The history: figures, search, and every dictation by day.
FocusScope {
    id: page

    required property DictationListView model

    focus: true

    Shortcut {
        sequences: [StandardKey.Find]
        enabled: page.visible
        onActivated: search.forceActiveFocus(Qt.ShortcutFocusReason)
    }
    Column {
        id: header
        x: Theme.screenMargin
        y: Theme.screenMargin
        width: parent.width - 2 * Theme.screenMargin
        spacing: 16

        Item {
            width: parent.width
            height: greeting.implicitHeight

            Title {
                id: greeting
                anchors.left: parent.left
                anchors.right: clear.left
                anchors.rightMargin: Theme.rowSpacing
                text: page.model.greeting
                wrapMode: Text.NoWrap
                elide: Text.ElideRight
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: Theme.sectionSize
            }
            Button {
                id: clear
                anchors.right: parent.right
                anchors.baseline: greeting.baseline
                text: qsTr("Clear history")
                enabled: page.model.hasRecords
                onClicked: page.model.confirmingClear = true
            }
        }
        StatsCard {
            width: parent.width
            visible: page.height >= 400 // else the list needs the room
            figures: page.model.figures
        }
        SearchField {
            id: search
            width: parent.width
            focus: true
            placeholderText: qsTr("Search transcripts")
            text: page.model.search
            onTextEdited: page.model.search = text
            onCleared: page.model.search = ""
            Keys.onDownPressed: list.enter()
        }
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
        symbol: "waveform"
        title: page.model.emptyTitle
        hint: page.model.emptyHint
    }
    RowList {
        id: list

        anchors.top: edge.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        heir: search
        cacheBuffer: 400
        model: page.model.rows
        bottomMargin: 8
        Accessible.name: qsTr("Dictations")
        delegate: DictationRow {
            id: row

            width: list.width
            onCopyWanted: page.model.copy(index)
            onDeleteWanted: page.model.remove(index)
            onMenuWanted: (x, y) => menu.ask(row, x, y)
            ListView.onPooled: menu.forget(row)
        }

        TapHandler {
            acceptedButtons: Qt.RightButton
            onTapped: point => {
                const at = list.mapToItem(list.contentItem, point.position);
                const row = list.itemAt(at.x, at.y);
                if (row)
                    menu.ask(row, at.x, at.y - row.y);
            }
        }
    }
    ContextMenu {
        id: menu

        property DictationRow row: null

        function ask(of, x, y) {
            of.asked = true;
            row = of;
            list.currentIndex = of.index;
            popup(of, x, y, copy);
        }
        /// What it was asked about is gone.
        function forget(of) {
            if (row === of)
                dismiss();
        }
        function finish() {
            if (row)
                row.asked = false;
            row = null;
            list.regain();
        }
        onClosed: Qt.callLater(finish) // when what was chosen is done

        MenuEntry {
            id: copy
            symbol: "doc.on.doc"
            text: qsTr("Copy")
            onTriggered: menu.row.copy()
        }
        MenuEntry {
            symbol: "trash"
            text: qsTr("Delete")
            onTriggered: menu.row.deleteWanted()
        }
    }
    ConfirmationDialog {
        title: page.model.clearTitle
        message: qsTr("This cannot be undone.")
        confirmText: qsTr("Clear history")
        visible: page.model.confirmingClear
        onConfirmed: page.model.clear()
        onClosed: page.model.confirmingClear = false
    }

    function whereabouts() {
        const place = list.whereabouts();
        return place ? {id: model.rows.idAt(place.row), past: place.past} : null;
    }
    function resume(place) {
        const row = model.rows.rowOf(place.id);
        if (row >= 0)
            list.resume({row: row, past: place.past});
    }
}
