import QtQuick
import Sayvane

/// One device of the account.
Item {
    id: row

    property string name: ""
    property bool current: false
    property string lastUsed: ""

    signal signedOut

    width: parent ? parent.width : implicitWidth
    implicitHeight: texts.height

    Column {
        id: texts
        width: parent.width - Math.max(badge.width, button.width) - Theme.labelSpacing

        Label {
            width: parent.width
            text: row.name
            elide: Text.ElideRight
            wrapMode: Text.NoWrap
        }
        Caption {
            width: parent.width
            text: row.lastUsed
        }
    }
    Label {
        id: badge
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        visible: row.current
        text: qsTr("This Mac")
        color: Theme.secondary
    }
    Button {
        id: button
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        visible: !row.current
        kind: Button.Destructive
        text: qsTr("Sign out")
        help: qsTr("Sign out %1").arg(row.name)
        onClicked: row.signedOut()
    }
}
