import QtQuick
import Sayvane

/// A sentence about how something went, with a sign for those who do not see its colour.
Row {
    id: line

    enum Tone { Notice, Success, Warning, Failure }

    property int tone: StatusLine.Notice
    property string text: ""
    readonly property color ink: tone === StatusLine.Success ? Theme.success
                               : tone === StatusLine.Warning ? Theme.warning
                               : tone === StatusLine.Failure ? Theme.error : Theme.secondary

    width: parent ? parent.width : implicitWidth
    spacing: 6
    visible: text !== ""
    Accessible.role: tone === StatusLine.Notice ? Accessible.StaticText : Accessible.AlertMessage
    Accessible.name: text

    FontMetrics {
        id: metrics
        font: words.font
    }
    Icon {
        id: sign
        y: (metrics.height - size) / 2
        visible: line.tone !== StatusLine.Notice
        size: 16
        color: line.ink
        symbol: line.tone === StatusLine.Success ? "checkmark.circle.fill"
              : line.tone === StatusLine.Warning ? "exclamationmark.triangle.fill" : "exclamationmark.circle.fill"
    }
    Label {
        id: words
        width: line.width - (sign.visible ? sign.width + line.spacing : 0)
        text: line.text
        color: line.ink
        font.pixelSize: Theme.calloutSize
        Accessible.ignored: true
    }
}
