#pragma once

#include <expected>

/// What the command line asks for.
struct Invocation
{
    enum class Output { text, json, csv };

    QString verb; ///< empty for the program itself
    QStringList arguments;
    QString profile;
    QString service; ///< the hosted service's address, usable as it stands
    QString secret;  ///< the secret to store; empty for none
    Output output = Output::text;
    bool all = false;
    bool undo = false;
    bool help = false;
    bool version = false;

    /// Whether the program that stays is asked for, which needs a display.
    bool stays() const { return verb.isEmpty() && secret.isEmpty() && !help && !version; }
};

/// The words that `sayvane` understands.
namespace CommandLine {

/// The words after the program's name; the error is one sentence for the user.
std::expected<Invocation, QString> parse(const QStringList &words);

/// What --help prints.
QString help();

QStringList verbs();

} // namespace CommandLine
