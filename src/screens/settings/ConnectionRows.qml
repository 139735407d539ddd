import QtQuick
import Sayvane

/// Tests whether the provider answers, and tells what it said.
Column {
    id: rows

    required property string name
    required property ConnectionTest connection

    width: parent ? parent.width : implicitWidth
    spacing: Theme.labelSpacing

    Button {
        text: qsTr("Test connection")
        help: qsTr("Asks %1 which models it serves. No audio is sent.").arg(rows.name)
        busy: rows.connection.testingConnection
        enabled: !busy
        onClicked: rows.connection.testConnection()
    }
    StatusLine {
        tone: StatusLine.Success
        text: rows.connection.connectionStatus
    }
    Caption {
        width: parent.width
        visible: text !== ""
        text: rows.connection.connectionDetail
    }
    StatusLine {
        tone: StatusLine.Failure
        text: rows.connection.connectionError
    }
}
