import QtQuick
import QtQuick.Templates as T
import Sayvane

/// Several lines of text with a rounded edge; it scrolls when they do not fit. Tab leaves it.
T.Control {
    id: control

    property alias text: editor.text
    property alias readOnly: editor.readOnly
    property alias placeholderText: editor.placeholderText
    property alias editor: editor
    property string label: ""
    property bool failed: false

    implicitWidth: 200
    implicitHeight: 84
    opacity: enabled ? 1 : Theme.disabledOpacity
    hoverEnabled: true
    Accessible.ignored: true

    background: FieldFrame {
        focused: editor.activeFocus
        hovered: control.hovered
        failed: control.failed
    }
    contentItem: Flickable {
        id: view

        clip: true
        // The editor scrolls to its cursor while there is no height yet, and so beyond its upper edge.
        onContentYChanged: if (contentY < 0) contentY = 0
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: ScrollBar {}

        T.TextArea.flickable: T.TextArea {
            id: editor

            padding: 6
            leftPadding: 8
            rightPadding: 10
            wrapMode: TextEdit.Wrap
            textFormat: TextEdit.PlainText
            color: Theme.text
            selectionColor: Theme.accent
            selectedTextColor: Theme.onAccent
            placeholderTextColor: Theme.tertiary
            font.pixelSize: Theme.textSize
            selectByMouse: true
            KeyNavigation.priority: KeyNavigation.BeforeItem
            Keys.onTabPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
            Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
            Accessible.role: Accessible.EditableText
            Accessible.name: control.label
            Accessible.multiLine: true

            Text {
                x: editor.leftPadding
                y: editor.topPadding
                width: editor.availableWidth
                visible: editor.length === 0 && editor.preeditText === ""
                text: editor.placeholderText
                wrapMode: Text.WordWrap
                color: editor.placeholderTextColor
                font: editor.font
                Accessible.ignored: true
            }
        }
    }
}
