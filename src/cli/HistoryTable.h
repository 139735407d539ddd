#pragma once

#include "history/Dictation.h"

#include <QList>
#include <QString>
#include <QTimeZone>

/// Dictations as tables.
namespace HistoryTable {

/// One line each: when, in the user's time zone, and what, its line breaks as spaces.
QString text(const QList<Dictation> &records, const QTimeZone &zone);

/// Comma-separated values with a line of names, as RFC 4180 has them.
QString csv(const QList<Dictation> &records);

} // namespace HistoryTable
