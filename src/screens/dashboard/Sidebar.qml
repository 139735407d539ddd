import QtQuick
import QtQuick.Templates as T
import Sayvane

/// The list of sections; arrow keys move through it. Beside it, the keys that scroll work on the screen.
ListView {
    id: sidebar

    required property DashboardView dashboard
    required property DashboardNavigation navigation
    property Item screen: null
    /// Whether there is room for the symbols alone.
    property bool compact: false

    implicitWidth: 60
    activeFocusOnTab: true
    topMargin: 12
    bottomMargin: 12
    spacing: 2
    boundsBehavior: Flickable.StopAtBounds
    interactive: contentHeight > height
    model: dashboard.sections
    currentIndex: dashboard.sections.findIndex(section => section.id === navigation.section)
    keyNavigationEnabled: false
    Keys.forwardTo: screen ? [screen] : []
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

    delegate: T.ItemDelegate {
        id: row

        required property var modelData
        readonly property bool chosen: modelData.id === sidebar.navigation.section

        x: 8
        width: sidebar.width - 16
        height: 36
        hoverEnabled: true
        text: modelData.title
        onClicked: sidebar.navigation.section = modelData.id
        Accessible.role: Accessible.ListItem
        Accessible.name: text
        Accessible.selectable: true
        Accessible.selected: chosen
        Accessible.focusable: true

        background: Rectangle {
            radius: Theme.buttonRadius
            color: row.chosen || row.down ? Theme.pressed : row.hovered ? Theme.hover : "transparent"

            FocusRing {
                anchors.margins: 0
                around: Theme.buttonRadius - 3
                shown: row.chosen && sidebar.activeFocus
            }
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
            visible: !sidebar.compact
            text: row.text
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
            font.weight: row.chosen ? Font.Medium : Font.Normal
            Accessible.ignored: true
        }
        HelpTip {
            visible: sidebar.compact && row.hovered
            text: row.text
        }
    }
}
