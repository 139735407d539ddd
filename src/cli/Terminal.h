#pragma once

#include <QString>

#include <optional>

/// How a command ends, as docs/CONTROL.md lists it; the numbers above 60 are those of sysexits(3).
namespace ExitCode {

inline constexpr int done = 0;
inline constexpr int failed = 1;      ///< what was asked could not be done
inline constexpr int usage = 64;      ///< the command line is wrong
inline constexpr int noInput = 66;    ///< a file cannot be read
inline constexpr int notRunning = 69; ///< Sayvane is not running and would have to
inline constexpr int noDisplay = 71;  ///< there is no display for the program
inline constexpr int inUse = 75;      ///< another process is at work on the profile; try again later

} // namespace ExitCode

/// The three streams of a command, in UTF-8.
namespace Terminal {

/// Prints to standard output; false when nobody could take it.
bool print(const QString &text);
/// Says it on standard error, as one line of this program, and gives back the status.
int complain(const QString &sentence, int status);
/// Asks on standard error and reads one line, trimmed; none at the end of the input.
std::optional<QString> ask(const QString &question);

} // namespace Terminal
