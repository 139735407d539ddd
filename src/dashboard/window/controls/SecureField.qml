import QtQuick
import Sayvane

/// A text field that shows dots unless it is asked to reveal what is in it.
TextField {
    property bool revealed: false

    // Qt withholds the name of a field with dots, and describes it by its placeholder.
    placeholderText: label + ", " + shownPlaceholder
    echoMode: revealed ? TextInput.Normal : TextInput.Password
    inputMethodHints: Qt.ImhHiddenText | Qt.ImhSensitiveData | Qt.ImhNoPredictiveText | Qt.ImhNoAutoUppercase
    Accessible.passwordEdit: true
}
