#pragma once

#include <QByteArray>
#include <QString>

#include <expected>

/// Files that are replaced whole or not at all.
namespace AtomicFile {

/// Writes the bytes to a temporary file that then takes the place of the one at the path, readable by its
/// owner alone. A crash or a full disk leaves the old file as it was; the error is the system's own words.
std::expected<void, QString> replace(const QString &path, const QByteArray &bytes);

} // namespace AtomicFile
