import QtQuick
import Sayvane

/// A lightly filled block; its children stand below each other.
Rectangle {
    default property alias items: column.data
    property alias spacing: column.spacing
    property int padding: Theme.cardPadding

    implicitWidth: column.implicitWidth + 2 * padding
    implicitHeight: column.implicitHeight + 2 * padding
    radius: Theme.cardRadius
    color: Theme.fill
    border.width: Theme.highContrast ? 1 : 0
    border.color: Theme.outline

    Column {
        id: column
        x: parent.padding
        y: parent.padding
        width: parent.width - 2 * parent.padding
        spacing: Theme.rowSpacing
    }
}
