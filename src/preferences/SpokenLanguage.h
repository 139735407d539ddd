#pragma once

#include <QCoreApplication>
#include <QList>
#include <QString>

/// A language to dictate in, by its ISO 639-1 code; the empty code stands for automatic detection.
struct SpokenLanguage
{
    QString code;
    QString name;

    bool operator==(const SpokenLanguage &) const = default;

    /// Those offered in the settings, in order.
    static const QList<SpokenLanguage> &all();

    /// The display name for a code, trimmed and in any letter case; an unlisted code reads as itself in
    /// upper case.
    static QString nameFor(const QString &code);

    /// Whether the code is listed exactly as it stands.
    static bool isListed(const QString &code);

    Q_DECLARE_TR_FUNCTIONS(SpokenLanguage)
};
