#include "cloud/account/ServiceErrorBody.h"

#include "base/Json.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

std::optional<ServiceErrorBody> ServiceErrorBody::decode(const QJsonObject &body)
{
    JsonMembers members(body);
    JsonMembers error(members.object("error"_L1).value_or(QJsonObject()));
    const QString code = error.text("code"_L1).value_or(QString()).trimmed().toLower();
    const auto message = error.text("message"_L1);
    if (!members.isSound() || !error.isSound())
        return std::nullopt;
    return ServiceErrorBody{code.isEmpty() ? std::nullopt : std::optional(code), message};
}

ServiceErrorBody ServiceErrorBody::decode(const QByteArray &json)
{
    return decode(QJsonDocument::fromJson(json).object()).value_or(ServiceErrorBody());
}
