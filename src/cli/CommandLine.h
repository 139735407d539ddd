#pragma once

#include "cli/Invocation.h"

#include <expected>

/// The words that `sayvane` understands.
namespace CommandLine {

/// The words after the program's name; the error is one sentence for the user.
std::expected<Invocation, QString> parse(const QStringList &words);

/// What --help prints.
QString help();

QStringList verbs();

} // namespace CommandLine
