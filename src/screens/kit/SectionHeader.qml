import QtQuick
import Sayvane

/// The name of a part of a screen.
Label {
    font.pixelSize: Theme.sectionSize
    font.weight: Font.DemiBold
    Accessible.role: Accessible.Heading
}
