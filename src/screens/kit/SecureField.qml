import QtQuick
import Sayvane

/// A text field that shows dots unless it is asked to reveal what is in it.
TextField {
    property bool revealed: false

    echoMode: revealed ? TextInput.Normal : TextInput.Password
    inputMethodHints: Qt.ImhHiddenText | Qt.ImhSensitiveData | Qt.ImhNoPredictiveText | Qt.ImhNoAutoUppercase
    Accessible.passwordEdit: true
}
