import QtQuick
import Sayvane

/// The list of sections; arrow keys move through it.
ListView {
    id: sidebar

    required property DashboardView dashboard
    required property DashboardNavigation navigation

    activeFocusOnTab: true
    topMargin: 12
    bottomMargin: 12
    spacing: 2
    boundsBehavior: Flickable.StopAtBounds
    interactive: contentHeight > height
    model: dashboard.sections
    currentIndex: dashboard.sections.findIndex(section => section.id === navigation.section)
    keyNavigationEnabled: false
    Keys.onUpPressed: choose(-1)
    Keys.onDownPressed: choose(1)
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Sections")

    function choose(by) {
        const item = itemAtIndex(currentIndex + by);
        if (!item)
            return;
        navigation.section = item.modelData.id;
        forceActiveFocus(Qt.TabFocusReason); // a screen that comes up takes the keyboard
    }

    delegate: Rectangle {
        id: row

        required property var modelData
        readonly property bool chosen: modelData.id === sidebar.navigation.section

        x: 8
        width: sidebar.width - 16
        height: 36
        radius: Theme.buttonRadius
        color: chosen ? Theme.pressed : press.pressed ? Theme.pressed : pointer.hovered ? Theme.hover : "transparent"
        Accessible.role: Accessible.ListItem
        Accessible.name: modelData.title
        Accessible.selectable: true
        Accessible.selected: chosen
        Accessible.focusable: true
        Accessible.onPressAction: sidebar.navigation.section = modelData.id

        HoverHandler {
            id: pointer
        }
        TapHandler {
            id: press
            gesturePolicy: TapHandler.ReleaseWithinBounds
            onTapped: sidebar.navigation.section = row.modelData.id
        }
        TileIcon {
            id: tile
            x: 8
            anchors.verticalCenter: parent.verticalCenter
            symbol: row.modelData.symbol
            colours: row.modelData.tileColours
        }
        Label {
            anchors.left: tile.right
            anchors.leftMargin: 10
            anchors.right: parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            text: row.modelData.title
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
            font.weight: row.chosen ? Font.Medium : Font.Normal
            Accessible.ignored: true
        }
        FocusRing {
            anchors.margins: 0
            around: Theme.buttonRadius - 3
            shown: row.chosen && sidebar.activeFocus
        }
    }
}
