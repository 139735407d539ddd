#pragma once

#include "history/Dictation.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <expected>

/// The form of history.json: a UTF-8 JSON array of records, two-space indentation, a space on each side
/// of each colon, dates as ISO 8601 in UTC with whole seconds, absent fields left out.
namespace HistoryFile {

QByteArray encode(const QList<Dictation> &records);

/// The records in the file's order; the error says what could not be read. One bad record makes the
/// whole file unreadable.
std::expected<QList<Dictation>, QString> decode(const QByteArray &json);

} // namespace HistoryFile
