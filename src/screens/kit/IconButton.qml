import QtQuick
import Sayvane

/// A borderless button that is only a symbol; its help text is its name.
Button {
    kind: Button.Borderless
    leftPadding: 4
    implicitWidth: Theme.controlHeight
}
