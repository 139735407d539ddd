import QtQuick
import QtQuick.Window
import Sayvane

/// The settings form.
ScrollPane {
    id: page

    required property SettingsView form

    widest: 640
    label: qsTr("Settings")

    Binding {
        target: page.form
        property: "shown"
        value: page.visible && page.Window.window !== null && page.Window.window.visible
        restoreMode: Binding.RestoreNone
    }

    FormSection {
        title: qsTr("Account")

        AccountRows {
            account: page.form.account
        }
    }
    FormSection {
        DisclosureGroup {
            label: page.form.advancedLabel
            expanded: page.form.preferences.advancedExpanded
            onToggled: page.form.preferences.advancedExpanded = !expanded

            ServiceRows {
                form: page.form
            }
        }
    }
    FormSection {
        title: qsTr("Dashboard")

        Toggle {
            width: parent.width
            text: qsTr("Show dashboard on launch")
            checked: page.form.preferences.showDashboardOnLaunch
            onToggled: page.form.preferences.showDashboardOnLaunch = checked
        }
        Caption {
            width: parent.width
            text: qsTr("Off by default. Sayvane lives in the menu bar, and the dashboard is always one click away under “Open Sayvane”.")
        }
    }
    FormSection {
        title: qsTr("Dictation")

        DictationPreferences {
            preferences: page.form.preferences
            language: page.form.language
        }
    }
    FormSection {
        title: qsTr("Permissions")

        PermissionRow {
            title: qsTr("Microphone")
            granted: page.form.micGranted
            onOpened: page.form.openMicrophonePane()
        }
        PermissionRow {
            title: qsTr("Accessibility (hotkey + paste)")
            granted: page.form.axTrusted
            onOpened: page.form.openAccessibilityPane()
        }
        StatusLine {
            tone: StatusLine.Warning
            text: page.form.paneNotice
        }
        Caption {
            width: parent.width
            text: qsTr("Accessibility is the only permission the hotkey normally needs. If the shortcut still does nothing after granting it, also enable Sayvane under Input Monitoring, then quit and relaunch.")
        }
    }
    FormSection {
        title: qsTr("Shortcut")

        ShortcutChoice {
            id: shortcut
            model: page.form.shortcut
            onHeightChanged: if (model.capturing) Qt.callLater(page.reveal, shortcut)
        }
    }

    /// A part of a form: its name, if it has one, over a card with its rows.
    component FormSection: Column {
        id: section

        default property alias items: card.items
        property string title: ""

        width: parent ? parent.width : implicitWidth
        spacing: Theme.labelSpacing

        SectionHeader {
            visible: section.title !== ""
            text: section.title
        }
        Card {
            id: card
            width: section.width
        }
    }

    /// One permission: whether the system grants it, and the way to where it does.
    component PermissionRow: Item {
        id: row

        property string title: ""
        property bool granted: false

        signal opened

        width: parent ? parent.width : implicitWidth
        implicitHeight: Theme.controlHeight

        Label {
            width: state.x - x - Theme.labelSpacing
            anchors.verticalCenter: parent.verticalCenter
            text: row.title
            elide: Text.ElideRight
            wrapMode: Text.NoWrap
        }
        Row {
            id: state
            anchors.right: open.left
            anchors.rightMargin: Theme.rowSpacing
            anchors.verticalCenter: parent.verticalCenter
            spacing: 6
            Accessible.role: Accessible.StaticText
            Accessible.name: row.title + ": " + word.text

            Rectangle {
                anchors.verticalCenter: parent.verticalCenter
                width: 8
                height: 8
                radius: 4
                color: row.granted ? Theme.success : Theme.error
            }
            Label {
                id: word
                text: row.granted ? qsTr("Granted") : qsTr("Required")
                color: row.granted ? Theme.secondary : Theme.error
                Accessible.ignored: true
            }
        }
        Button {
            id: open
            anchors.right: parent.right
            text: qsTr("Open System Settings")
            help: qsTr("Opens the system settings for %1").arg(row.title)
            onClicked: row.opened()
        }
    }
}
