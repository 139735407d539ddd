#pragma once

#include <QJsonValue>
#include <QString>

/// The user's preferences on disk: text, booleans and numbers by key.
///
/// What is set is on disk when the call returns; a store that cannot write keeps the value for the
/// session and says so in the log.
class DefaultsStore
{
public:
    virtual ~DefaultsStore() = default;

    /// The stored value; undefined when the key has none.
    virtual QJsonValue value(const QString &key) const = 0;
    virtual void setValue(const QString &key, const QJsonValue &value) = 0;
    virtual void remove(const QString &key) = 0;
};
