#include "cloud/account/DeviceSession.h"

#include "base/Json.h"
#include "base/Text.h"
#include "cloud/account/AccountClient.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>
#include <QLocale>

using namespace Qt::StringLiterals;

namespace {

std::optional<QDateTime> dateOf(const QJsonValue &value)
{
    return AccountClient::date(value.isString() ? std::optional(value.toString()) : std::nullopt);
}

QString identifier(const QJsonValue &value)
{
    if (!value.isDouble())
        return value.toString();
    if (const auto whole = Json::wholeNumber(value))
        return QString::number(*whole);
    return QString::number(value.toDouble(), 'f', QLocale::FloatingPointShortest);
}

std::optional<QList<DeviceSession>> listOf(const QJsonArray &array)
{
    QList<DeviceSession> sessions;
    for (const QJsonValue &each : array) {
        const auto session = DeviceSession::decode(each.toObject());
        if (!session)
            return std::nullopt;
        sessions.append(*session);
    }
    return sessions;
}

} // namespace

std::expected<DeviceSession, QString> DeviceSession::decode(const QJsonObject &object)
{
    DeviceSession session;
    session.id = identifier(object.value("id"_L1));
    if (session.id.isEmpty())
        return std::unexpected(u"No session id"_s);
    session.device = Text::quoted(object.value("device"_L1).toString());
    if (session.device.isEmpty())
        session.device = AccountError::tr("Unknown device");
    session.createdAt = dateOf(object.value("createdAt"_L1));
    session.lastUsedAt = dateOf(object.value("lastUsedAt"_L1));
    session.current = object.value("current"_L1).toBool();
    return session;
}

std::optional<QList<DeviceSession>> DeviceSession::decodeList(const QByteArray &json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (document.isArray())
        return listOf(document.array());
    if (!document.isObject())
        return std::nullopt;
    for (const auto key : {"sessions"_L1, "data"_L1}) {
        const QJsonValue value = document.object().value(key);
        if (value.isArray())
            return listOf(value.toArray());
        if (!value.isUndefined() && !value.isNull())
            return std::nullopt;
    }
    return QList<DeviceSession>();
}
