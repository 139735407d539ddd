#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <optional>

/// Rules for reading JSON.
namespace Json {

/// The whole number that a value holds, be it written 12 or 12.0; none for a fraction, a number beyond 64
/// bits or a value of another type.
std::optional<qint64> wholeNumber(const QJsonValue &value);

} // namespace Json

/// Reads one object whose members may all be missing, or null, but must be of their type where present.
class JsonMembers
{
public:
    explicit JsonMembers(const QJsonObject &object) : m_object(object) {}

    std::optional<QString> text(QLatin1StringView key);
    std::optional<qint64> wholeNumber(QLatin1StringView key);
    std::optional<bool> boolean(QLatin1StringView key);
    std::optional<QJsonObject> object(QLatin1StringView key);

    /// Whether everything asked for so far was absent or of its type.
    bool isSound() const { return m_isSound; }

private:
    std::optional<QJsonValue> present(QLatin1StringView key) const;

    QJsonObject m_object;
    bool m_isSound = true;
};
