#pragma once

#include <QString>
#include <QVariantList>

#include <chrono>
#include <expected>

/// Asks the running Sayvane of a profile, from another process.
class ControlClient
{
public:
    struct Error
    {
        enum class Kind {
            notRunning, ///< nobody serves the profile, or there is no session bus
            failed,
        };
        Kind kind = Kind::failed;
        QString message; ///< one sentence for the user
    };
    using Answer = std::expected<QVariantList, Error>;

    explicit ControlClient(const QString &profile);

    bool isServed() const;
    Answer call(const QString &method, const QVariantList &arguments = {},
                std::chrono::milliseconds limit = std::chrono::seconds(5)) const;

private:
    QString m_busName;
};
