import QtQuick
import Sayvane

/// A field to search in: empty it with the cross or with Escape.
TextField {
    id: control

    signal cleared

    implicitHeight: 32
    leftPadding: 34
    rightPadding: 34
    Keys.onEscapePressed: event => {
        event.accepted = text !== "";
        empty();
    }

    function empty() {
        clear();
        cleared();
        forceActiveFocus();
    }

    background: Rectangle {
        radius: Theme.fieldRadius
        color: control.hovered ? Theme.pressed : Theme.fill

        FocusRing {
            shown: control.activeFocus
            around: Theme.fieldRadius
        }
    }
    Icon {
        x: 10
        anchors.verticalCenter: parent.verticalCenter
        symbol: "magnifyingglass"
        size: 16
        color: Theme.secondary
    }
    IconButton {
        anchors.right: parent.right
        anchors.rightMargin: 2
        anchors.verticalCenter: parent.verticalCenter
        visible: control.length > 0
        symbol: "xmark.circle.fill"
        help: qsTr("Clear search")
        onClicked: control.empty()
    }
}
