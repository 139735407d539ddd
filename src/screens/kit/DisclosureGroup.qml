import QtQuick
import QtQuick.Templates as T
import Sayvane

/// A heading that opens and closes what stands below it. `expanded` belongs to the model: bind it, and
/// answer `toggled`.
Column {
    id: group

    default property alias items: content.data
    property string label: ""
    property bool expanded: false

    signal toggled

    width: parent ? parent.width : implicitWidth
    spacing: Theme.rowSpacing

    T.AbstractButton {
        id: heading

        readonly property bool expanded: group.expanded

        width: group.width
        height: Theme.controlHeight
        hoverEnabled: true
        focusPolicy: Qt.StrongFocus
        onClicked: group.toggled()
        Keys.onReturnPressed: event => { if (!event.isAutoRepeat) group.toggled(); }
        Keys.onRightPressed: if (!group.expanded) group.toggled()
        Keys.onLeftPressed: if (group.expanded) group.toggled()
        Accessible.role: Accessible.Button
        Accessible.name: group.label
        Accessible.description: group.expanded ? qsTr("Expanded") : qsTr("Collapsed")

        background: Rectangle {
            anchors.fill: parent
            anchors.leftMargin: -6
            anchors.rightMargin: -6
            radius: Theme.buttonRadius
            color: heading.down ? Theme.pressed : heading.hovered ? Theme.hover : "transparent"

            FocusRing {
                shown: heading.visualFocus
            }
        }
        Icon {
            anchors.verticalCenter: parent.verticalCenter
            symbol: "chevron.right"
            size: 14
            color: Theme.secondary
            rotation: group.expanded ? 90 : 0

            Behavior on rotation {
                NumberAnimation {
                    duration: Theme.motion
                    easing.type: Easing.OutQuad
                }
            }
        }
        Label {
            x: 20
            width: parent.width - x
            height: parent.height
            verticalAlignment: Text.AlignVCenter
            text: group.label
            font.pixelSize: Theme.calloutSize
            font.weight: Font.Medium
            Accessible.ignored: true
        }
    }
    Column {
        id: content
        x: 20
        width: group.width - x
        visible: group.expanded
        spacing: Theme.rowSpacing
    }
}
