import QtQuick
import Sayvane

/// One permission: whether the system grants it, and the way to where it does.
Item {
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
