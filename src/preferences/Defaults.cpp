#include "preferences/Defaults.h"

#include "base/DefaultsStore.h"

Defaults::Defaults(DefaultsStore &store) : m_store(store)
{
}

std::optional<QString> Defaults::text(const QString &key) const
{
    const QJsonValue found = value(key, QJsonValue::String);
    return found.isString() ? std::optional(found.toString()) : std::nullopt;
}

bool Defaults::boolean(const QString &key) const
{
    return value(key, QJsonValue::Bool).toBool();
}

std::optional<double> Defaults::number(const QString &key) const
{
    const QJsonValue found = value(key, QJsonValue::Double);
    return found.isDouble() ? std::optional(found.toDouble()) : std::nullopt;
}

bool Defaults::isStored(const QString &key) const
{
    return !m_store.value(key).isUndefined();
}

std::optional<QString> Defaults::storedText(const QString &key) const
{
    const QJsonValue stored = m_store.value(key);
    return stored.isString() ? std::optional(stored.toString()) : std::nullopt;
}

void Defaults::set(const QString &key, const QJsonValue &value)
{
    if (m_store.value(key) == value)
        return;
    m_store.setValue(key, value);
    Q_EMIT changed(key);
}

void Defaults::remove(const QString &key)
{
    if (!isStored(key))
        return;
    m_store.remove(key);
    Q_EMIT changed(key);
}

void Defaults::registerDefaults(const QHash<QString, QJsonValue> &values)
{
    m_registered = values;
}

QJsonValue Defaults::value(const QString &key, QJsonValue::Type type) const
{
    const QJsonValue stored = m_store.value(key);
    return stored.type() == type ? stored : m_registered.value(key, QJsonValue(QJsonValue::Undefined));
}
