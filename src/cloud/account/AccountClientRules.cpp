#include "cloud/account/AccountClient.h"

#include "base/Text.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr int longestDeviceName = 64;
constexpr int longestEmail = 254;
constexpr double longestRetryAfter = 3600;

} // namespace

AccountClient::Credential AccountClient::credentialOf(const QString &token)
{
    return token.startsWith("svs_"_L1) ? Credential::session : Credential::none;
}

QString AccountClient::normalisedEmail(const QString &text)
{
    return text.trimmed().toLower();
}

bool AccountClient::looksLikeEmail(const QString &text)
{
    const QString email = normalisedEmail(text);
    if (Text::characterCount(email) > longestEmail ||
        std::ranges::any_of(email, [](QChar character) { return character.isSpace(); }))
        return false;
    const QStringList pieces = email.split(u'@');
    if (pieces.size() != 2 || pieces.first().isEmpty())
        return false;
    const QString &domain = pieces.last();
    return domain.contains(u'.') && !domain.startsWith(u'.') && !domain.endsWith(u'.');
}

std::optional<QDateTime> AccountClient::date(const std::optional<QString> &text)
{
    // Qt also reads times without a zone, and fractions of minutes.
    static const QRegularExpression shape(
        uR"(\A[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}(\.[0-9]+)?(Z|[+-][0-9]{2}:?[0-9]{2})\z)"_s);
    const QString written = text.value_or(QString()).trimmed();
    if (!shape.match(written).hasMatch())
        return std::nullopt;
    const QDateTime date = QDateTime::fromString(written, Qt::ISODateWithMs);
    return date.isValid() ? std::optional(date.toUTC()) : std::nullopt;
}

QString AccountClient::trim(const QString &device)
{
    const QString name = device.trimmed();
    return name.isEmpty() ? QCoreApplication::translate("AccountClient", "Mac")
                          : Text::firstCharacters(name, longestDeviceName);
}

std::optional<qint64> AccountClient::seconds(const std::optional<QString> &retryAfter)
{
    const QString text = Text::trimmedBlanks(retryAfter.value_or(QString()));
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(number))
        return std::nullopt;
    // Bounded on either side, so that the number fits.
    return static_cast<qint64>(std::clamp(std::ceil(number), -longestRetryAfter, longestRetryAfter));
}
