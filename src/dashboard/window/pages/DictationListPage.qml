import QtQuick
import QtQuick.Templates as T
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
            }
            Button {
                id: clear
                anchors.right: parent.right
                anchors.baseline: greeting.baseline
                text: "Clear history"
                enabled: page.model.hasRecords
                onClicked: page.model.confirmingClear = true
            }
        }
        StatsCard {
            width: parent.width
            figures: page.model.figures
        }
        SearchField {
            id: search
            width: parent.width
            focus: true
            placeholderText: "Search transcripts"
            text: page.model.search
            onTextEdited: page.model.search = text
            onCleared: page.model.search = ""
            Keys.onDownPressed: list.forceActiveFocus(Qt.TabFocusReason)
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
    ListView {
        id: list

        anchors.top: edge.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        visible: !page.model.empty
        clip: true
        reuseItems: true
        cacheBuffer: 400
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: true
        currentIndex: -1
        highlightMoveDuration: 0
        model: page.model.rows
        bottomMargin: 8
        onActiveFocusChanged: if (activeFocus && currentIndex < 0) currentIndex = Math.max(0, indexAt(0, contentY + 40))
        Accessible.role: Accessible.List
        Accessible.name: "Dictations"
        T.ScrollBar.vertical: ScrollBar {}
        delegate: DictationRow {
            width: list.width
            onCopyWanted: page.model.copy(index)
            onDeleteWanted: page.model.remove(index)
        }
    }
    ConfirmationDialog {
        title: page.model.clearTitle
        message: "This cannot be undone."
        confirmText: "Clear history"
        visible: page.model.confirmingClear
        onConfirmed: page.model.clear()
        onClosed: page.model.confirmingClear = false
    }
}
