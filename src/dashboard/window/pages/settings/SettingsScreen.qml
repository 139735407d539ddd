import QtQuick
import Sayvane

/// Shows a settings form of its own, which lives as long as this does.
Item {
    id: screen

    /// Makes forms.
    required property QtObject forms

    Loader {
        id: loader
        anchors.fill: parent
        Component.onCompleted: setSource("SettingsPage.qml", {
            form: screen.forms.open(loader)
        })
    }
}
