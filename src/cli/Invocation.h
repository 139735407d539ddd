#pragma once

#include <QString>
#include <QStringList>

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
    bool help = false;
    bool version = false;

    /// Whether the program that stays is asked for, which needs a display.
    bool stays() const { return verb.isEmpty() && secret.isEmpty() && !help && !version; }
};
