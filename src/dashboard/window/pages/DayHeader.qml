import QtQuick
import Sayvane

/// The day above its dictations; it stays at the top while they scroll by.
Rectangle {
    required property string section

    height: 36
    color: Theme.window

    Label {
        x: Theme.screenMargin
        width: parent.width - 2 * x
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 6
        text: parent.section
        color: Theme.secondary
        font.pixelSize: Theme.calloutSize
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }
}
