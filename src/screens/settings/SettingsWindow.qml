import QtQuick
import QtQuick.Window
import Sayvane

/// The settings in a window of their own.
Window {
    id: window

    required property SettingsForms forms

    width: 640
    height: 720
    minimumWidth: 520
    minimumHeight: 400
    title: qsTr("Sayvane Settings")
    color: Theme.window

    SettingsScreen {
        anchors.fill: parent
        forms: window.forms
    }
    Shortcut {
        sequences: [StandardKey.Close]
        onActivated: window.close()
    }
}
