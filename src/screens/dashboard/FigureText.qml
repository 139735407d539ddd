import QtQuick
import Sayvane

/// A number that stands out.
Label {
    font.pixelSize: Theme.figureSize
    font.weight: Font.DemiBold
    fontSizeMode: Text.HorizontalFit
    minimumPixelSize: Theme.textSize
    wrapMode: Text.NoWrap
    Accessible.ignored: true
}
