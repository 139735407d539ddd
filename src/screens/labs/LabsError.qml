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

    FontMetrics {
        id: metrics
        font: words.font
    }
    Icon {
        id: sign
        y: (metrics.height - size) / 2
        symbol: "exclamationmark.triangle.fill"
        size: 14
        color: Theme.error
    }
    Caption {
        id: words
        width: line.width - sign.width - line.spacing
        text: line.text
        color: Theme.error
        Accessible.ignored: true
    }
}
