#include "base/Json.h"

std::optional<qint64> Json::wholeNumber(const QJsonValue &value)
{
    // What is no whole number reads as whatever default is offered.
    const qint64 number = value.toInteger(0);
    return number == value.toInteger(1) ? std::optional(number) : std::nullopt;
}
