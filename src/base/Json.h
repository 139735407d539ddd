#pragma once

#include <QJsonValue>

#include <optional>

/// Rules for reading JSON.
namespace Json {

/// The whole number that a value holds, be it written 12 or 12.0; none for a fraction, a number beyond 64
/// bits or a value of another type.
std::optional<qint64> wholeNumber(const QJsonValue &value);

} // namespace Json
