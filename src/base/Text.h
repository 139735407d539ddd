#pragma once

#include <QString>

namespace Decimal {

/// With exactly so many decimals and a point, rounded as C's printf does: to the nearest, of two as near to
/// the one that is even.
QString format(double number, int decimals);

} // namespace Decimal

/// Rules for texts that people wrote or said.
namespace Text {

/// The text without spaces and tabs at its ends; line breaks stay.
QString trimmedBlanks(const QString &text);

/// The text with line feeds for line ends, and without all other control characters but the tab. A terminal
/// takes those for keys, and the escape character for the beginning of a command.
QString withoutControls(QString text);

/// The number of pieces when the text is split at white space and line breaks, empty pieces dropped.
int wordCount(const QString &text);

/// At most the first `count` characters as a reader counts them: an emoji with its modifiers is one.
QString firstCharacters(const QString &text, int count);

/// How many characters a reader counts.
int characterCount(const QString &text);

/// At most the first `units` units of UTF-16, up to the end of a character as a reader counts them, and an
/// ellipsis for what is left out. Takes no longer where more is left out.
QString excerpt(const QString &text, qsizetype units);

/// Words of a server, or of anybody else whom we do not know, as they may stand in a sentence of ours: no
/// longer than anybody reads.
QString quoted(const QString &words);

} // namespace Text
