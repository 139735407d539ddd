#pragma once

#include <QString>

/// Folders that only this user can enter.
namespace PrivateFolder {

/// Makes the folder and those above it that are missing, each for this user alone. A folder that is
/// there already is closed to others; false when it is a link or belongs to someone else.
bool ensure(const QString &path);

/// Makes a folder with a fresh name that begins with `path` and a hyphen; empty when it cannot.
QString createUnique(const QString &path);

} // namespace PrivateFolder
