#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

/// The body of every refusal of the hosted service: `{"error": {"code", "message"}}`, every member optional.
struct ServiceErrorBody
{
    std::optional<QString> code;    ///< trimmed and lower-cased, never empty
    std::optional<QString> message; ///< as sent

    /// None when the error is not of this form.
    static std::optional<ServiceErrorBody> decode(const QJsonObject &body);
    /// Bytes that are no such body tell neither code nor message.
    static ServiceErrorBody decode(const QByteArray &json);
};
