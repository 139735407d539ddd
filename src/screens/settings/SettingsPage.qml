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
            granted: page.form.permissions.micGranted
            onOpened: page.form.permissions.openMicrophonePane()
        }
        PermissionRow {
            title: qsTr("Accessibility (hotkey + paste)")
            granted: page.form.permissions.axTrusted
            onOpened: page.form.permissions.openAccessibilityPane()
        }
        StatusLine {
            tone: StatusLine.Warning
            text: page.form.permissions.paneNotice
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
}
