#pragma once

#include "base/Folders.h"

#include <QProcessEnvironment>
#include <QString>

/// A profile keeps folders and secrets of its own, so that a trial run never touches the ordinary
/// Sayvane of the same user. The ordinary profile is the empty text.
namespace Profile {

/// The name that stands for a profile in paths and keyring attributes: "sayvane" for the ordinary one,
/// "sayvane-NAME" otherwise. It is safe as one part of a path, and two profiles never share one.
QString systemName(const QString &profile);

} // namespace Profile

/// Folders that only this user can enter.
namespace PrivateFolder {

/// Makes the folder and those above it that are missing, each for this user alone. A folder that is
/// there already is closed to others; false when it is a link or belongs to someone else.
bool ensure(const QString &path);

/// Makes a folder with a fresh name that begins with `path` and a hyphen; empty when it cannot.
QString createUnique(const QString &path);

} // namespace PrivateFolder

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

/// The free space that the file system reports to ordinary users. For a folder that does not exist yet
/// it is that of the nearest folder above.
class StatVolumes final : public Volumes
{
public:
    std::optional<int64_t> availableCapacity(const QString &folder) const override;
};
