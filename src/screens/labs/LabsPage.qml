import QtQuick
import Sayvane

/// The Labs screen.
ScrollPane {
    id: page

    required property LabsView model
    readonly property bool usable: model.usable

    widest: 720
    onVisibleChanged: appear()
    Component.onCompleted: appear()
    onUsableChanged: appear()

    function appear() {
        if (visible)
            Qt.callLater(model.appear); // it changes what is being read here
    }

    Column {
        width: parent.width
        spacing: 4

        Row {
            spacing: 10

            Title {
                text: qsTr("Labs")
            }
            Rectangle {
                anchors.verticalCenter: parent.verticalCenter
                width: word.implicitWidth + 16
                height: word.implicitHeight + 6
                radius: height / 2
                color: Theme.fill
                border.width: 1
                border.color: Theme.outline

                Caption {
                    id: word
                    anchors.centerIn: parent
                    text: qsTr("Experimental")
                    lineHeight: 1
                }
            }
        }
        Callout {
            width: parent.width
            text: qsTr("Ask Claude or ChatGPT. Uses 30 seconds of your daily minutes per answer.")
        }
    }
    Loader {
        width: parent.width
        sourceComponent: page.model.usable ? panel : notice
    }

    Component {
        id: notice

        Card {
            Row {
                width: parent.width
                spacing: Theme.labelSpacing

                Icon {
                    id: sign
                    anchors.verticalCenter: parent.verticalCenter
                    symbol: "exclamationmark.triangle.fill"
                    size: 20
                    color: Theme.warning
                }
                Label {
                    width: parent.width - sign.width - open.width - 2 * parent.spacing
                    anchors.verticalCenter: parent.verticalCenter
                    text: qsTr("Labs needs a Sayvane account. Sign in under Settings.")
                }
                Button {
                    id: open
                    text: qsTr("Open Settings")
                    onClicked: page.model.openSettings()
                }
            }
        }
    }
    Component {
        id: panel

        LabsPanel {
            model: page.model
        }
    }
}
