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

/// One record as it stands in the file, for callers that keep it: a record never changes, and encoding two
/// thousand takes far longer than putting them together.
QByteArray encodeRecord(const Dictation &record);
/// The file of records already encoded.
QByteArray join(const QList<QByteArray> &encodedRecords);

/// The records in the file's order; the error says what could not be read. One bad record makes the
/// whole file unreadable.
std::expected<QList<Dictation>, QString> decode(const QByteArray &json);

} // namespace HistoryFile
