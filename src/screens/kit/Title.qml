import QtQuick
import Sayvane

/// The name of a screen.
Label {
    font.pixelSize: Theme.titleSize
    font.weight: Font.DemiBold
    Accessible.role: Accessible.Heading
}
