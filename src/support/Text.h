#pragma once

#include <QString>

/// Rules for texts that people wrote or said.
namespace Text {

/// The text without spaces and tabs at its ends; line breaks stay.
QString trimmedBlanks(const QString &text);

/// The number of pieces when the text is split at white space and line breaks, empty pieces dropped.
int wordCount(const QString &text);

/// At most the first `count` characters as a reader counts them: an emoji with its modifiers is one.
QString firstCharacters(const QString &text, int count);

/// How many characters a reader counts.
int characterCount(const QString &text);

} // namespace Text
