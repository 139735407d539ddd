import QtQuick
import QtQuick.Templates as T
import Sayvane

/// What can be done with what was clicked.
T.Menu {
    id: menu

    implicitWidth: 140
    implicitHeight: implicitContentHeight + 2 * padding
    padding: 4
    margins: 8

    contentItem: ListView {
        implicitHeight: contentHeight
        interactive: false
        model: menu.contentModel
        currentIndex: menu.currentIndex
        Accessible.role: Accessible.PopupMenu
        Accessible.name: menu.title
    }
    background: Rectangle {
        radius: Theme.fieldRadius
        color: Theme.surface
        border.width: 1
        border.color: Theme.outline
    }
}
