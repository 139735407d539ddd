#pragma once

#include <QString>

#include <optional>

/// The three streams of a command, in UTF-8.
namespace Terminal {

/// Prints to standard output; false when nobody could take it.
bool print(const QString &text);
/// Says it on standard error, as one line of this program, and gives back the status.
int complain(const QString &sentence, int status);
/// Asks on standard error and reads one line, trimmed; none at the end of the input.
std::optional<QString> ask(const QString &question);

} // namespace Terminal
