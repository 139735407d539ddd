#pragma once

#include <QByteArray>
#include <QString>

#include <expected>

/// Files that are replaced whole or not at all.
namespace AtomicFile {

/// Writes the bytes to a temporary file that takes the place of the one at the path once they are on the
/// disk, readable by its owner alone. A crash, a full or a failing disk leaves the old file as it was; the
/// error is the system's own words. A link stays a link; its target is replaced. Waits for the disk.
std::expected<void, QString> replace(const QString &path, const QByteArray &bytes);

} // namespace AtomicFile
