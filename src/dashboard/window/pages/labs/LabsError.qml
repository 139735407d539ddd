import QtQuick
import Sayvane

/// What went wrong with a question.
Row {
    id: line

    property string text: ""

    width: parent ? parent.width : implicitWidth
    spacing: 6
    visible: text !== ""
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    Icon {
        id: sign
        symbol: "exclamationmark.triangle.fill"
        size: 14
        color: Theme.error
    }
    Caption {
        width: line.width - sign.width - line.spacing
        text: line.text
        color: Theme.error
        Accessible.ignored: true
    }
}
