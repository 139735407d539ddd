import QtQuick
import Sayvane

/// Tells that the provider cannot be used yet, and where to mend it.
Rectangle {
    id: banner

    required property DashboardView dashboard

    visible: !dashboard.hasCredential
    implicitHeight: Math.max(message.implicitHeight, open.height) + 24
    color: Qt.rgba(1, 0.584, 0, 0.12)
    Accessible.role: Accessible.AlertMessage
    Accessible.name: dashboard.bannerMessage

    Icon {
        id: sign
        x: 20
        anchors.verticalCenter: parent.verticalCenter
        symbol: "exclamationmark.triangle.fill"
        size: 16
        color: Theme.dark ? "#ff9f0a" : "#e07800"
    }
    Label {
        id: message
        anchors.left: sign.right
        anchors.leftMargin: 10
        anchors.right: open.left
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        text: banner.dashboard.bannerMessage
        font.pixelSize: Theme.calloutSize
        font.weight: Font.Medium
        Accessible.ignored: true
    }
    Button {
        id: open
        anchors.right: parent.right
        anchors.rightMargin: 20
        anchors.verticalCenter: parent.verticalCenter
        kind: Button.Prominent
        text: qsTr("Open Settings")
        font.pixelSize: Theme.calloutSize
        onClicked: banner.dashboard.openSettings()
    }
    Divider {
        anchors.bottom: parent.bottom
        width: parent.width
    }
}
