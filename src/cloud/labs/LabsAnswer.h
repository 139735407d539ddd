#pragma once

#include "cloud/account/AccountError.h"
#include "cloud/labs/LabsProvider.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <expected>
#include <optional>

/// What an assistant answered.
struct LabsAnswer
{
    Q_GADGET
    Q_PROPERTY(QString text MEMBER text CONSTANT)
    Q_PROPERTY(QString provider MEMBER provider CONSTANT)
    Q_PROPERTY(QString model MEMBER model CONSTANT)
public:
    QString text;     ///< trimmed, never empty
    QString provider; ///< who answered, as the service names it
    QString model;    ///< empty when the service names none
    std::optional<qint64> inputTokens;
    std::optional<qint64> outputTokens;

    bool operator==(const LabsAnswer &) const = default;

    /// The answer in the service's reply to a request for `asked`.
    static std::expected<LabsAnswer, AccountError> decode(const QByteArray &json, LabsProvider asked);
};
