import QtQuick
import Sayvane

/// How dictations are treated: cleanup, clipboard, sounds, language, vocabulary.
Column {
    id: rows

    required property Prefs preferences
    required property LanguageChoice language

    width: parent ? parent.width : implicitWidth
    spacing: Theme.rowSpacing

    Toggle {
        width: parent.width
        text: qsTr("Clean up transcript (remove filler, fix punctuation)")
        checked: rows.preferences.cleanupEnabled
        onToggled: rows.preferences.cleanupEnabled = checked
    }
    Toggle {
        width: parent.width
        text: qsTr("Restore clipboard after pasting")
        checked: rows.preferences.restoreClipboard
        onToggled: rows.preferences.restoreClipboard = checked
    }
    Toggle {
        width: parent.width
        text: qsTr("Play sounds")
        checked: rows.preferences.soundsEnabled
        onToggled: rows.preferences.soundsEnabled = checked
    }
    Divider {
        width: parent.width
    }
    FormRow {
        text: qsTr("Spoken language")

        Picker {
            label: qsTr("Spoken language")
            options: rows.language.entries
            current: rows.language.selection
            onPicked: value => rows.language.selection = value
        }
    }
    FormRow {
        visible: rows.language.showsOther
        text: qsTr("Language code")

        TextField {
            label: qsTr("Language code")
            placeholderText: qsTr("ISO 639-1, e.g. ne")
            text: rows.language.code
            onTextEdited: {
                rows.language.code = text;
                text = Qt.binding(() => rows.language.code); // it may have been put into its stored form
            }
        }
    }
    Caption {
        width: parent.width
        text: qsTr("Auto-detect is the default, and the one to keep if you switch language mid sentence. Whisper handles all of these in their native script: Gujarati comes back in Gujarati, not transliterated, and the cleanup pass never translates it.")
    }
    Divider {
        width: parent.width
    }
    Caption {
        id: vocabularyCaption
        width: parent.width
        text: qsTr("Custom vocabulary: names, brands, jargon (comma separated)")
    }
    TextArea {
        width: parent.width
        label: vocabularyCaption.text
        text: rows.preferences.vocabulary
        // What is only shown is no change.
        editor.onTextChanged: if (editor.activeFocus) rows.preferences.vocabulary = editor.text
    }
}
