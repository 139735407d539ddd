import QtQuick
import Sayvane

/// The dictation shortcut, and how another is chosen.
Column {
    id: rows

    required property ShortcutRows model

    width: parent ? parent.width : implicitWidth
    spacing: Theme.rowSpacing

    FormRow {
        text: qsTr("Hotkey")

        KeyCap {
            text: rows.model.shortcut
        }
    }
    StatusLine {
        tone: StatusLine.Warning
        text: rows.model.obstacle
    }
    Column {
        width: parent.width
        spacing: 4

        Label {
            width: parent.width
            text: qsTr("%1: tap once to start listening, tap again to stop and paste.").arg(rows.model.shortcut)
        }
        Label {
            width: parent.width
            text: qsTr("Escape while listening cancels without transcribing.")
        }
    }
    Caption {
        width: parent.width
        visible: rows.model.usesFn
        text: qsTr("Recommended: System Settings → Keyboard → “Press 🌐 key to” → Do Nothing, so macOS doesn't open the emoji picker or its own dictation.")
    }
    Divider {
        width: parent.width
    }
    Row {
        visible: !rows.model.capturing
        spacing: Theme.labelSpacing

        Button {
            id: change
            text: qsTr("Change")
            help: qsTr("Choose another shortcut by pressing it")
            onClicked: {
                rows.model.change();
                cancel.forceActiveFocus(Qt.TabFocusReason);
            }
        }
        Button {
            text: qsTr("Reset to Fn + Space")
            onClicked: rows.model.resetToDefault()
        }
    }
    Rectangle {
        width: parent.width
        height: capture.height + 24
        visible: rows.model.capturing
        radius: Theme.fieldRadius
        color: Theme.surface
        border.width: 1
        border.color: Theme.accent

        Column {
            id: capture
            x: 12
            y: 12
            width: parent.width - 24
            spacing: Theme.labelSpacing

            Item {
                width: parent.width
                height: Theme.controlHeight

                Label {
                    id: invitation
                    anchors.verticalCenter: parent.verticalCenter
                    text: qsTr("Press your shortcut")
                    font.weight: Font.Medium
                    Accessible.role: Accessible.AlertMessage
                }
                KeyCap {
                    anchors.left: invitation.right
                    anchors.leftMargin: Theme.rowSpacing
                    visible: text !== ""
                    text: rows.model.pressed
                }
                Button {
                    id: cancel
                    anchors.right: parent.right
                    text: qsTr("Cancel")
                    onClicked: {
                        rows.model.cancel();
                        change.forceActiveFocus(Qt.TabFocusReason);
                    }
                }
            }
            StatusLine {
                tone: StatusLine.Warning
                text: rows.model.hint
            }
            Caption {
                width: parent.width
                text: qsTr("Everything you press goes to Sayvane until you do. Escape on its own cancels.")
            }
        }
    }
    Connections {
        target: rows.model
        function onChanged() {
            // The button that had the keyboard is gone.
            if (!rows.model.capturing && cancel.activeFocus)
                change.forceActiveFocus(Qt.TabFocusReason);
        }
    }

    /// Keys as they are pressed together.
    component KeyCap: Rectangle {
        property alias text: keys.text

        implicitWidth: keys.implicitWidth + 20
        implicitHeight: Theme.controlHeight
        radius: Theme.buttonRadius
        color: Theme.surface
        border.width: 1
        border.color: Theme.outline

        Label {
            id: keys
            anchors.centerIn: parent
            font.weight: Font.Medium
        }
    }
}
