import QtQuick
import Sayvane

/// A part of a form: its name, if it has one, over a card with its rows.
Column {
    id: section

    default property alias items: card.items
    property string title: ""

    width: parent ? parent.width : implicitWidth
    spacing: Theme.labelSpacing

    SectionHeader {
        visible: section.title !== ""
        text: section.title
    }
    Card {
        id: card
        width: section.width
    }
}
