#include "base/Json.h"

std::optional<qint64> Json::wholeNumber(const QJsonValue &value)
{
    // What is no whole number reads as whatever default is offered.
    const qint64 number = value.toInteger(0);
    return number == value.toInteger(1) ? std::optional(number) : std::nullopt;
}

std::optional<QJsonValue> JsonMembers::present(QLatin1StringView key) const
{
    const QJsonValue value = m_object.value(key);
    return value.isUndefined() || value.isNull() ? std::nullopt : std::optional(value);
}

std::optional<QString> JsonMembers::text(QLatin1StringView key)
{
    const auto value = present(key);
    m_isSound = m_isSound && (!value || value->isString());
    return value && value->isString() ? std::optional(value->toString()) : std::nullopt;
}

std::optional<qint64> JsonMembers::wholeNumber(QLatin1StringView key)
{
    const auto value = present(key);
    const auto number = value ? Json::wholeNumber(*value) : std::nullopt;
    m_isSound = m_isSound && value.has_value() == number.has_value();
    return number;
}

std::optional<bool> JsonMembers::boolean(QLatin1StringView key)
{
    const auto value = present(key);
    m_isSound = m_isSound && (!value || value->isBool());
    return value && value->isBool() ? std::optional(value->toBool()) : std::nullopt;
}

std::optional<QJsonObject> JsonMembers::object(QLatin1StringView key)
{
    const auto value = present(key);
    m_isSound = m_isSound && (!value || value->isObject());
    return value && value->isObject() ? std::optional(value->toObject()) : std::nullopt;
}
