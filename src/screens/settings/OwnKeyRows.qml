import QtQuick
import Sayvane

/// The user's own API key: typed or pasted, saved, removed.
Column {
    id: rows

    required property string name
    required property KeyRow key

    width: parent ? parent.width : implicitWidth
    spacing: Theme.labelSpacing
    // Saving is what Return does where nothing else wants it.
    Keys.onReturnPressed: event => { if (!event.isAutoRepeat) rows.key.saveKey(); }
    Keys.onEnterPressed: event => { if (!event.isAutoRepeat) rows.key.saveKey(); }

    Label {
        id: title
        text: qsTr("%1 API key").arg(rows.name)
        font.pixelSize: Theme.calloutSize
        font.weight: Font.Medium
    }
    Row {
        width: parent.width
        spacing: Theme.labelSpacing

        SecureField {
            id: field
            width: parent.width - reveal.width - paste.width - 2 * parent.spacing
            label: title.text
            placeholderText: rows.key.keyPlaceholder
            text: rows.key.apiKey
            revealed: rows.key.showKey
            failed: rows.key.keyError !== ""
            onTextEdited: rows.key.apiKey = text
            onActiveFocusChanged: rows.key.keyFieldFocused = activeFocus
        }
        Button {
            id: reveal
            // as wide as the longer word, so that the field keeps its width
            implicitWidth: 60
            text: rows.key.showKey ? qsTr("Hide") : qsTr("Show")
            help: rows.key.showKey ? qsTr("Show dots instead of the key") : qsTr("Show what is typed")
            onClicked: rows.key.showKey = !rows.key.showKey
        }
        Button {
            id: paste
            text: qsTr("Paste")
            help: qsTr("Paste the key from the clipboard")
            onClicked: rows.key.pasteKey()
        }
    }
    Caption {
        width: parent.width
        visible: !rows.key.keyStored
        text: qsTr("No %1 key saved yet").arg(rows.name)
    }
    Row {
        spacing: Theme.labelSpacing

        Button {
            id: save
            kind: Button.Prominent
            text: qsTr("Save key")
            onClicked: rows.key.saveKey()
        }
        Button {
            kind: Button.Destructive
            text: qsTr("Remove key")
            onClicked: rows.key.keyStored ? removal.open() : rows.key.removeKey()
        }
        Button {
            kind: Button.Link
            text: qsTr("Get a key")
            help: qsTr("Opens %1").arg(rows.key.consoleAddress)
            onClicked: rows.key.openConsole()
        }
    }
    StatusLine {
        tone: StatusLine.Success
        text: rows.key.keySaved ? qsTr("Key saved") : ""
    }
    StatusLine {
        tone: StatusLine.Failure
        text: rows.key.keyError
    }
    StatusLine {
        text: rows.key.keyNotice
    }

    ConfirmationDialog {
        id: removal
        title: qsTr("Remove the %1 key?").arg(rows.name)
        message: qsTr("It is deleted from the Keychain. Dictating with %1 needs a key.").arg(rows.name)
        confirmText: qsTr("Remove key")
        onConfirmed: rows.key.removeKey()
    }
    Connections {
        target: rows.key
        function onChanged() {
            if (rows.key.keyFieldFocused && !field.activeFocus)
                field.forceActiveFocus(Qt.OtherFocusReason);
            else if (!rows.key.keyFieldFocused && field.activeFocus)
                save.forceActiveFocus(Qt.TabFocusReason); // so that the keyboard has a place to go on from
        }
    }
}
