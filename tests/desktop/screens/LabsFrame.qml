import QtQuick
import QtQuick.Window
import Sayvane

Window {
    id: window
    required property QtObject model
    color: Theme.window

    Loader {
        anchors.fill: parent
        Component.onCompleted: setSource("qrc:/qml/Sayvane/pages/labs/LabsPage.qml", { model: window.model })
    }
}
