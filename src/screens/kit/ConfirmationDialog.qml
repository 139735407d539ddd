import QtQuick
import QtQuick.Templates as T
import QtQuick.Window
import Sayvane

/// Asks before something is lost. Cancel has the keyboard, and gives it back; Escape cancels, and so does going
/// to another screen.
T.Dialog {
    id: dialog

    property string message: ""
    property string confirmText: ""

    signal confirmed

    property Item asker: null
    property int askersReason: Qt.OtherFocusReason
    readonly property bool there: parent !== null && parent.visible

    onThereChanged: if (!there) close()

    function giveBack() {
        if (!there)
            return;
        const next = asker && asker.enabled ? asker : asker?.nextItemInFocusChain();
        next?.forceActiveFocus(askersReason);
    }

    anchors.centerIn: T.Overlay.overlay
    width: Math.min(380, T.Overlay.overlay ? T.Overlay.overlay.width - 40 : 380)
    implicitHeight: implicitContentHeight + 2 * padding
    padding: Theme.screenMargin
    modal: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape
    onAboutToShow: {
        asker = parent.Window.activeFocusItem;
        askersReason = asker?.focusReason ?? Qt.OtherFocusReason;
    }
    onClosed: Qt.callLater(giveBack) // when what was asked for is done
    onOpened: {
        if (cancel.activeFocus) // the user may have gone on while it came up
            cancel.forceActiveFocus(Qt.TabFocusReason);
    }

    T.Overlay.modal: Rectangle {
        color: Qt.rgba(0, 0, 0, Theme.dark ? 0.55 : 0.3)
    }
    background: Rectangle {
        radius: Theme.cardRadius
        color: Theme.surface
        border.width: 1
        border.color: Theme.separator
    }
    contentItem: Column {
        spacing: Theme.labelSpacing

        SectionHeader {
            width: parent.width
            text: dialog.title
        }
        Label {
            width: parent.width
            text: dialog.message
            color: Theme.secondary
        }
        Item {
            width: 1
            height: 4
        }
        Row {
            anchors.right: parent.right
            spacing: Theme.labelSpacing

            Button {
                id: cancel
                focus: true
                text: qsTr("Cancel")
                onClicked: dialog.close()
            }
            Button {
                kind: Button.Destructive
                text: dialog.confirmText
                onClicked: {
                    dialog.close();
                    dialog.confirmed();
                }
            }
        }
    }
    enter: Transition {
        NumberAnimation {
            property: "opacity"
            from: 0
            to: 1
            duration: Theme.motion
            easing.type: Easing.OutQuad
        }
    }
}
