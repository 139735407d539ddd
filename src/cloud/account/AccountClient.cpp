#include "cloud/account/AccountClient.h"

#include "base/Json.h"
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
constexpr std::chrono::milliseconds retryPause = 1s;
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
    const auto number = ServiceClient::seconds(retryAfter);
    if (!number || !std::isfinite(*number))
        return std::nullopt;
    // Bounded on either side, so that the number fits.
    return static_cast<qint64>(std::clamp(std::ceil(*number), -longestRetryAfter, longestRetryAfter));
}

AccountClient::AccountClient(const Collaborators &with)
    : m_prefs(with.prefs),
      m_account(with.account),
      m_service({.sessions = with.sessions, .account = with.account, .http = with.http, .clock = with.clock})
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
    const int asked = m_account.session();
    const auto answer = co_await send(*get, credentialOf(token), true, stop);
    if (!answer)
        co_return std::unexpected(answer.error());
    if (stop.stop_requested())
        co_return std::unexpected(AccountError::cancelled());
    const auto info = AccountInfo::decode(answer->body);
    if (!info)
        co_return std::unexpected(AccountError::unreadable());
    if (m_account.session() == asked)
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
    const auto pause = [](const ServiceRefusal &refusal) -> std::optional<std::chrono::milliseconds> {
        const bool isBusy = refusal.status == 502 || refusal.status == 503 || refusal.status == 504;
        return isBusy ? std::optional(retryPause) : std::nullopt;
    };
    ServiceClient::RetryRule rule;
    if (mayRetry && request.method == "GET")
        rule = {pause, true};
    return send(request, credential, rule, stop);
}

QCoro::Task<AccountClient::Result<HttpResponse>> AccountClient::send(HttpRequest request,
                                                                     Credential credential,
                                                                     ServiceClient::RetryRule rule,
                                                                     std::stop_token stop)
{
    const ServiceClient::Answer answer = co_await m_service.send(request, rule, stop);
    if (answer)
        co_return *answer;
    if (const auto *why = std::get_if<TransportError>(&answer.error()))
        co_return std::unexpected(why->kind == TransportError::Kind::cancelled ? AccountError::cancelled()
                                                                               : AccountError::network(*why));
    co_return std::unexpected(failure(std::get<ServiceRefusal>(answer.error()), credential));
}

AccountError AccountClient::failure(const ServiceRefusal &refusal, Credential credential)
{
    const AccountFailure::Outcome outcome = AccountFailure::outcome(refusal);
    return outcome.rejectsSession
               ? unauthorized(refusal.body.code, refusal.isCurrent ? credential : Credential::none)
               : outcome.error;
}

AccountError AccountClient::unauthorized(const std::optional<QString> &code, Credential credential)
{
    if (credential == Credential::session)
        m_service.dropSession();
    return AccountFailure::signedOut(code);
}
