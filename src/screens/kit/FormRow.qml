import QtQuick
import Sayvane

/// A label in the form's left column and what it belongs to in the right one, or below it where there is no room.
Item {
    id: row

    default property alias items: field.data
    property alias text: label.text
    property int labelWidth: 132
    property bool stacked: width < 260 + labelWidth

    width: parent ? parent.width : implicitWidth
    implicitWidth: 400
    implicitHeight: Math.max(Theme.controlHeight, field.y + field.implicitHeight)

    Label {
        id: label
        width: row.stacked ? row.width : row.labelWidth
        height: Theme.controlHeight
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.NoWrap
        elide: Text.ElideRight
    }
    Column {
        id: field
        x: row.stacked ? 0 : row.labelWidth + Theme.labelSpacing
        y: row.stacked ? label.height : 0
        width: row.width - x
        spacing: 4
    }
}
