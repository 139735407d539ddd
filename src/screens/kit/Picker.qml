import QtQuick
import QtQuick.Templates as T
import QtQuick.Window
import Sayvane

/// A choice from a list that opens below. `options` is a list of {value, text}.
///
/// `current` belongs to the model: bind it, and answer `picked`.
T.ComboBox {
    id: control

    property var options: []
    property var current
    property string label: ""
    readonly property bool expanded: popup.visible

    signal picked(var value)

    implicitWidth: 200
    implicitHeight: Theme.controlHeight
    leftPadding: 10
    rightPadding: 28
    opacity: enabled ? 1 : Theme.disabledOpacity
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    font.pixelSize: Theme.textSize
    model: options
    textRole: "text"
    valueRole: "value"
    currentIndex: options.findIndex(option => option.value === current)
    onActivated: index => {
        const value = options[index].value;
        // The model decides; what it keeps shows again.
        currentIndex = Qt.binding(() => options.findIndex(option => option.value === current));
        if (value !== current)
            picked(value);
    }
    Accessible.role: Accessible.ComboBox
    Accessible.name: label
    Accessible.description: expanded && highlightedIndex >= 0 ? options[highlightedIndex].text : displayText
    Accessible.onPressAction: control.popup.open()

    contentItem: Text {
        text: control.displayText
        textFormat: Text.PlainText
        color: Theme.text
        font: control.font
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
    }
    indicator: Icon {
        x: control.width - width - 8
        anchors.verticalCenter: parent.verticalCenter
        symbol: "chevron.up.chevron.down"
        size: 14
        color: Theme.secondary
    }
    background: Rectangle {
        radius: Theme.buttonRadius
        color: Theme.surface
        border.width: 1
        border.color: Theme.outline

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            visible: control.enabled && (control.hovered || control.down)
            color: control.down ? Theme.pressed : Theme.hover
        }
        FocusRing {
            shown: control.visualFocus
        }
    }
    delegate: T.ItemDelegate {
        id: entry

        required property var modelData
        required property int index

        width: ListView.view ? ListView.view.width : implicitWidth
        implicitHeight: Theme.controlHeight
        highlighted: control.highlightedIndex === index
        text: modelData.text
        Accessible.selectable: true
        Accessible.selected: control.currentIndex === index

        background: Rectangle {
            radius: Theme.buttonRadius - 1
            color: entry.highlighted ? Theme.accent : "transparent"
        }
        Icon {
            x: 6
            anchors.verticalCenter: parent.verticalCenter
            visible: control.currentIndex === entry.index
            symbol: "checkmark"
            size: 14
            color: entry.highlighted ? Theme.onAccent : Theme.text
        }
        Text {
            x: 26
            width: parent.width - x - 6
            height: parent.height
            text: entry.text
            textFormat: Text.PlainText
            elide: Text.ElideRight
            verticalAlignment: Text.AlignVCenter
            color: entry.highlighted ? Theme.onAccent : Theme.text
            font: control.font
        }
    }
    popup: T.Popup {
        y: control.height + 4
        width: control.width
        height: Math.min(contentItem.implicitHeight + 8, control.Window.height - 40)
        margins: 8
        padding: 4

        contentItem: ListView {
            implicitHeight: contentHeight
            clip: true
            model: control.delegateModel
            currentIndex: control.highlightedIndex
            boundsBehavior: Flickable.StopAtBounds
            Accessible.role: Accessible.List
            Accessible.name: control.label
            T.ScrollBar.vertical: ScrollBar {}
        }
        background: Rectangle {
            radius: Theme.fieldRadius
            color: Theme.surface
            border.width: 1
            border.color: Theme.outline
        }
    }
}
