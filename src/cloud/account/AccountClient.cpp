#include "cloud/account/AccountClient.h"

#include "base/Json.h"
#include "base/Sleep.h"
#include "base/Text.h"
#include "cloud/account/AccountError.h"
#include "cloud/account/AccountStatus.h"
#include "preferences/Prefs.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int longestDeviceName = 64;
constexpr int longestEmail = 254;
constexpr double longestRetryAfter = 3600;

constexpr auto requestTimeout = 30s;
constexpr auto retryPause = 1s;
constexpr qint64 usualCodeLifetime = 600;

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

AccountClient::AccountClient(const Collaborators &with)
    : m_prefs(with.prefs),
      m_sessions(with.sessions),
      m_account(with.account),
      m_http(with.http),
      m_clock(with.clock)
{
}

QCoro::Task<AccountClient::Result<qint64>> AccountClient::requestCode(QString email, QString device,
                                                                      std::stop_token stop)
{
    const auto post = request("POST", u"/v1/auth/request-code"_s, std::nullopt,
                              QJsonObject{{u"email"_s, normalisedEmail(email)}, {u"device"_s, trim(device)}});
    if (!post)
        co_return std::unexpected(post.error());
    const auto answer = co_await send(*post, Credential::none, true, stop);
    if (!answer)
        co_return std::unexpected(answer.error());
    const QJsonObject object = QJsonDocument::fromJson(answer->body).object();
    co_return Json::wholeNumber(object.value("expiresInSeconds"_L1)).value_or(usualCodeLifetime);
}

QCoro::Task<AccountClient::Result<AccountSession>> AccountClient::verify(QString email, QString code,
                                                                         QString device, std::stop_token stop)
{
    const auto post = request("POST", u"/v1/auth/verify"_s, std::nullopt,
                              QJsonObject{{u"email"_s, normalisedEmail(email)},
                                          {u"code"_s, code.trimmed()},
                                          {u"device"_s, trim(device)}});
    if (!post)
        co_return std::unexpected(post.error());
    const auto answer = co_await send(*post, Credential::none, true, stop);
    if (!answer)
        co_return std::unexpected(answer.error());
    co_return AccountSession::decode(answer->body, email);
}

QCoro::Task<AccountClient::Result<AccountInfo>> AccountClient::me(QString token, std::stop_token stop)
{
    const auto get = request("GET", u"/v1/me"_s, token, std::nullopt);
    if (!get)
        co_return std::unexpected(get.error());
    const int asked = session();
    const auto answer = co_await send(*get, credentialOf(token), true, stop);
    if (!answer)
        co_return std::unexpected(answer.error());
    if (stop.stop_requested())
        co_return std::unexpected(AccountError::cancelled());
    const auto info = AccountInfo::decode(answer->body);
    if (!info)
        co_return std::unexpected(AccountError::unreadable());
    if (session() == asked)
        m_account.setInfo(*info);
    co_return *info;
}

QCoro::Task<AccountClient::Result<void>> AccountClient::logout(QString token, std::stop_token stop)
{
    const auto post = request("POST", u"/v1/auth/logout"_s, token, QJsonObject());
    if (!post)
        co_return std::unexpected(post.error());
    const auto answer = co_await send(*post, Credential::none, true, stop);
    if (!answer)
        co_return std::unexpected(answer.error());
    co_return {};
}

QCoro::Task<AccountClient::Result<QList<DeviceSession>>> AccountClient::sessions(QString token,
                                                                                 std::stop_token stop)
{
    const auto get = request("GET", u"/v1/auth/sessions"_s, token, std::nullopt);
    if (!get)
        co_return std::unexpected(get.error());
    const auto answer = co_await send(*get, credentialOf(token), true, stop);
    if (!answer)
        co_return std::unexpected(answer.error());
    const auto list = DeviceSession::decodeList(answer->body);
    if (!list)
        co_return std::unexpected(AccountError::unreadable());
    co_return *list;
}

QCoro::Task<AccountClient::Result<void>> AccountClient::revokeSession(QString token, QString id,
                                                                      std::stop_token stop)
{
    const auto post = request("POST", u"/v1/auth/sessions/revoke"_s, token, QJsonObject{{u"id"_s, id}});
    if (!post)
        co_return std::unexpected(post.error());
    const auto answer = co_await send(*post, credentialOf(token), true, stop);
    if (!answer)
        co_return std::unexpected(answer.error());
    co_return {};
}

AccountClient::Result<HttpRequest> AccountClient::request(const QByteArray &method, const QString &path,
                                                          const std::optional<QString> &token,
                                                          const std::optional<QJsonObject> &body) const
{
    const QUrl url(m_prefs.accountBaseURL() + path, QUrl::StrictMode);
    if (!url.isValid())
        return std::unexpected(AccountError::invalidAddress());
    HttpRequest request{.method = method,
                        .url = url,
                        .headers = {{"Accept", "application/json"}},
                        .body = {},
                        .timeout = requestTimeout};
    if (token)
        request.headers.emplaceBack("Authorization", "Bearer " + token->toUtf8());
    if (body) {
        request.headers.emplaceBack("Content-Type", "application/json");
        request.body = QJsonDocument(*body).toJson(QJsonDocument::Compact);
    }
    return request;
}

QCoro::Task<AccountClient::Result<HttpResponse>>
AccountClient::send(HttpRequest request, Credential credential, bool mayRetry, std::stop_token stop)
{
    return attempt(request, credential, session(), mayRetry, stop);
}

QCoro::Task<AccountClient::Result<HttpResponse>> AccountClient::attempt(HttpRequest request,
                                                                        Credential credential, int asked,
                                                                        bool mayRetry, std::stop_token stop)
{
    const auto response = co_await m_http.send(request, stop);
    if (!response || stop.stop_requested())
        co_return std::unexpected(response ? AccountError::cancelled()
                                           : AccountError::network(response.error()));
    if (response->isSuccess())
        co_return *response;
    const int status = response->status;
    if (mayRetry && request.method == "GET" && (status == 502 || status == 503 || status == 504)) {
        co_await sleepFor(m_clock, retryPause, stop);
        co_return co_await attempt(request, credential, asked, false, stop); // at once if the pause was cut
    }
    const auto retryAfter = seconds(response->header("Retry-After"));
    co_return std::unexpected(failure(status, ServiceErrorBody::decode(response->body), retryAfter,
                                      session() == asked ? credential : Credential::none));
}

int AccountClient::session() const
{
    return m_account.session();
}

AccountError AccountClient::failure(int status, const ServiceErrorBody &body,
                                    std::optional<qint64> retryAfter, Credential credential)
{
    const AccountFailure::Outcome outcome = AccountFailure::outcome(status, body, retryAfter);
    return outcome.rejectsSession ? unauthorized(body.code, credential) : outcome.error;
}

AccountError AccountClient::unauthorized(const std::optional<QString> &code, Credential credential)
{
    if (credential == Credential::session)
        m_account.dropRejectedSession(m_sessions);
    return AccountFailure::signedOut(code);
}
