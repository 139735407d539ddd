import QtQuick
import Sayvane

/// The day above its dictations.
Label {
    leftPadding: Theme.screenMargin
    rightPadding: Theme.screenMargin
    topPadding: 14
    bottomPadding: 6
    wrapMode: Text.NoWrap
    elide: Text.ElideRight
    color: Theme.secondary
    font.pixelSize: Theme.calloutSize
    font.weight: Font.DemiBold
    Accessible.role: Accessible.Heading
}
