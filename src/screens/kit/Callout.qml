import QtQuick
import Sayvane

/// A sentence that introduces what stands below it.
Label {
    color: Theme.secondary
    font.pixelSize: Theme.calloutSize
    lineHeight: Theme.lineHeight
}
