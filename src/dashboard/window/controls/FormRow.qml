import QtQuick
import Sayvane

/// A label in the form's left column and what it belongs to in the right one.
Item {
    id: row

    default property alias items: field.data
    property alias text: label.text
    property int labelWidth: 132

    width: parent ? parent.width : implicitWidth
    implicitWidth: 400
    implicitHeight: Math.max(Theme.controlHeight, field.implicitHeight)

    Label {
        id: label
        width: row.labelWidth
        height: Theme.controlHeight
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.NoWrap
        elide: Text.ElideRight
    }
    Column {
        id: field
        x: row.labelWidth + Theme.labelSpacing
        width: row.width - x
        spacing: 4
    }
}
