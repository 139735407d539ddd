import QtQuick
import Sayvane

/// Shows a settings form of its own, which lives as long as this does.
Item {
    id: screen

    /// Makes forms.
    required property SettingsForms forms

    Keys.forwardTo: loader.item ? [loader.item] : []

    function whereabouts() {
        return loader.item.whereabouts();
    }
    function resume(place) {
        loader.item.resume(place);
    }

    Loader {
        id: loader
        anchors.fill: parent
        Component.onCompleted: setSource("SettingsPage.qml", {
            form: screen.forms.open(loader)
        })
    }
}
