import QtQuick
import QtQuick.Window
import Sayvane

/// A hairline of one device pixel.
Rectangle {
    implicitWidth: 1 / Screen.devicePixelRatio
    implicitHeight: 1 / Screen.devicePixelRatio
    color: Theme.separator
}
