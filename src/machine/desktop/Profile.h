#pragma once

#include <QString>

/// A profile keeps folders and secrets of its own, so that a trial run never touches the ordinary
/// Sayvane of the same user. The ordinary profile is the empty text.
namespace Profile {

/// The name that stands for a profile in paths and keyring attributes: "sayvane" for the ordinary one,
/// "sayvane-NAME" otherwise. It is safe as one part of a path, and two profiles never share one.
QString systemName(const QString &profile);

} // namespace Profile
