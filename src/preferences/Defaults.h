#pragma once

#include <QHash>
#include <QJsonValue>
#include <QObject>
#include <QString>

#include <optional>

class DefaultsStore;

/// The user's preferences in two layers: what is stored, over defaults registered anew at every launch
/// and never written.
///
/// A stored value of the wrong type reads as if it were not there.
class Defaults final : public QObject
{
    Q_OBJECT
public:
    explicit Defaults(DefaultsStore &store);

    /// The text of the key, stored or registered.
    std::optional<QString> text(const QString &key) const;
    /// As `text`, empty when the key has none.
    QString textOrEmpty(const QString &key) const { return text(key).value_or(QString()); }
    /// The truth of the key, stored or registered; false when it has none.
    bool boolean(const QString &key) const;
    std::optional<double> number(const QString &key) const;

    /// Whether a value of any type is stored, whatever is registered.
    bool isStored(const QString &key) const;
    /// The stored text alone.
    std::optional<QString> storedText(const QString &key) const;

    void set(const QString &key, const QJsonValue &value);
    void remove(const QString &key);

    /// Replaces the registered layer.
    void registerDefaults(const QHash<QString, QJsonValue> &values);

Q_SIGNALS:
    void changed(const QString &key);

private:
    /// The stored value if it has the type, else the registered one.
    QJsonValue value(const QString &key, QJsonValue::Type type) const;

    DefaultsStore &m_store;
    QHash<QString, QJsonValue> m_registered;
};
