#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QString>

#include <expected>
#include <optional>

/// One device that is signed in to the account.
struct DeviceSession
{
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id CONSTANT)
    Q_PROPERTY(QString device MEMBER device CONSTANT)
    /// An invalid date where it is not known.
    Q_PROPERTY(QDateTime createdAt READ createdAtOrInvalid CONSTANT)
    Q_PROPERTY(QDateTime lastUsedAt READ lastUsedAtOrInvalid CONSTANT)
    Q_PROPERTY(bool current MEMBER current CONSTANT)
public:
    QString id;
    QString device; ///< its name, never empty
    std::optional<QDateTime> createdAt;
    std::optional<QDateTime> lastUsedAt;
    bool current = false; ///< it is this computer

    bool operator==(const DeviceSession &) const = default;

    /// Lenient in everything but the identifier; the error is for developers.
    static std::expected<DeviceSession, QString> decode(const QJsonObject &object);

    /// The sessions of an answer: an array, or an object that holds one under "sessions" or "data". None
    /// when it is neither.
    static std::optional<QList<DeviceSession>> decodeList(const QByteArray &json);

private:
    QDateTime createdAtOrInvalid() const { return createdAt.value_or(QDateTime()); }
    QDateTime lastUsedAtOrInvalid() const { return lastUsedAt.value_or(QDateTime()); }
};
