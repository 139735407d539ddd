import QtQuick
import Sayvane

/// A remark in the smallest type.
Label {
    color: Theme.secondary
    font.pixelSize: Theme.captionSize
    lineHeight: Theme.lineHeight
}
