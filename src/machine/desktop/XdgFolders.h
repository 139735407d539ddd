#pragma once

#include "base/Folders.h"

#include <QProcessEnvironment>

/// This user's folders as the XDG base directory standard places them.
///
/// Files of the moment go to a folder of our own, closed to everyone else, in the shared temporary
/// folder: a recording may have 18 MB, and the runtime folder is a small file system in memory.
class XdgFolders final : public Folders
{
public:
    explicit XdgFolders(QString profile,
                        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment());

    /// Made when missing, on every call, since cleaners remove it after days without use. Where another
    /// user has put something in its place, a folder under a fresh name or in this user's cache is used.
    QString temporary() const override;

    QString applicationSupport() const override;

    /// Where the preferences are kept.
    QString configuration() const;
    /// Where all programs of the user keep theirs.
    QString userConfiguration() const;

private:
    QString base(const QString &variable, const QString &below) const;
    QString chooseTemporary() const;

    QString m_profile;
    QProcessEnvironment m_environment;
    mutable QString m_temporary; // as last chosen
};
