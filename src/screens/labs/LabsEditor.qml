import QtQuick
import Sayvane

/// A labelled text of some lines with a count of its characters.
Column {
    id: editor

    property string label: ""
    property string count: ""
    property string text: ""

    signal edited(string text)

    spacing: 6

    Item {
        width: parent.width
        height: name.implicitHeight

        Label {
            id: name
            text: editor.label
            font.weight: Font.Medium
        }
        Caption {
            anchors.right: parent.right
            anchors.baseline: name.baseline
            text: editor.count
            color: Theme.tertiary
            Accessible.name: qsTr("%1 characters").arg(text)
        }
    }
    TextArea {
        id: area
        width: parent.width
        implicitHeight: 96
        label: editor.label
        text: editor.text
        editor.onTextChanged: {
            if (area.text !== editor.text)
                editor.edited(area.text);
        }
    }
}
