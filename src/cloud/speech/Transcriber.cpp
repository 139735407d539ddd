#include "cloud/speech/Transcriber.h"

#include "base/Json.h"
#include "cloud/account/AccountStatus.h"
#include "cloud/account/Credentials.h"
#include "cloud/speech/MultipartBody.h"
#include "preferences/Prefs.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto minimumWarmUpInterval = 60s;

FlowError unreadableAnswer()
{
    return FlowError::platform(FlowError::tr("The answer could not be read."));
}

HttpRequest uploadRequest(const QUrl &url, const QString &credential, const MultipartBody &body)
{
    return {
        .method = "POST",
        .url = url,
        .headers = {{"Authorization", "Bearer " + credential.toUtf8()}, {"Content-Type", body.contentType()}},
        .body = body.bytes,
        .largestAnswer = Transcriber::largestText};
}

Transcriber::Text textIn(const QByteArray &json)
{
    const QJsonValue text = QJsonDocument::fromJson(json).object().value("text"_L1);
    if (!text.isString())
        return std::unexpected(unreadableAnswer());
    return text.toString();
}

} // namespace

Transcriber::Transcriber(const Collaborators &with)
    : m_prefs(with.prefs),
      m_credentials(with.credentials),
      m_account(with.account),
      m_http(with.http),
      m_clock(with.clock),
      m_service({.sessions = with.sessions, .account = with.account, .http = with.http, .clock = with.clock}),
      m_accountClient({.prefs = with.prefs,
                       .sessions = with.sessions,
                       .account = with.account,
                       .http = with.http,
                       .clock = with.clock})
{
}

std::expected<QUrl, FlowError> Transcriber::endpoint(const QString &path, Provider provider) const
{
    const QString base =
        provider == Provider::sayvane ? m_prefs.accountBaseURL() : Providers::facts(provider).baseAddress;
    QUrl url(base + path, QUrl::StrictMode);
    if (!url.isValid())
        return std::unexpected(
            FlowError::api(FlowError::tr("%1: invalid API address").arg(Providers::displayName(provider))));
    return url;
}

QCoro::Task<Transcriber::Text> Transcriber::transcribe(QString filePath, std::stop_token stop)
{
    const Provider provider = m_prefs.provider();
    if (provider == Provider::sayvane)
        return accountTranscribe(filePath, stop);
    return ownKeyTranscribe(provider, filePath, stop);
}

QCoro::Task<Transcriber::Text> Transcriber::ownKeyTranscribe(Provider provider, QString filePath,
                                                             std::stop_token stop)
{
    const auto key = co_await m_credentials.apiKey(provider, stop);
    if (!key)
        co_return std::unexpected(key.error());
    const auto url = endpoint(u"/audio/transcriptions"_s, provider);
    if (!url)
        co_return std::unexpected(url.error());

    const RequestBuilder build = [this, filePath, apiKey = *key, address = *url](
                                     const QString &model) -> std::expected<HttpRequest, FlowError> {
        QList<std::pair<QByteArray, QString>> fields{{"model", model}, {"response_format", u"json"_s}};
        if (const QString language = m_prefs.language(); !language.isEmpty())
            fields.append({"language", language});
        if (const QString vocabulary = m_prefs.vocabulary(); !vocabulary.isEmpty())
            fields.append({"prompt", u"Vocabulary that may appear: "_s + vocabulary});
        const auto body = MultipartBody::build(fields, filePath);
        if (!body)
            return std::unexpected(FlowError::platform(body.error()));
        return uploadRequest(address, apiKey, *body);
    };
    const QString model = m_prefs.transcriptionModel();
    const Answer reply = co_await send(provider, ModelPurpose::transcription, model, build, stop);
    if (!reply)
        co_return std::unexpected(reply.error());
    co_return textIn(reply->body);
}

QCoro::Task<Transcriber::Text> Transcriber::accountTranscribe(QString filePath, std::stop_token stop)
{
    const auto token = co_await m_credentials.apiKey(Provider::sayvane, stop);
    if (!token)
        co_return std::unexpected(token.error());
    const auto url = endpoint(u"/v1/transcribe"_s, Provider::sayvane);
    if (!url)
        co_return std::unexpected(url.error());

    QList<std::pair<QByteArray, QString>> fields;
    if (const QString language = m_prefs.language(); !language.isEmpty())
        fields.append({"language", language});
    if (const QString vocabulary = m_prefs.vocabulary(); !vocabulary.isEmpty())
        fields.append({"prompt", vocabulary});
    const auto upload = MultipartBody::build(fields, filePath);
    if (!upload)
        co_return std::unexpected(FlowError::platform(upload.error()));
    HttpRequest request = uploadRequest(*url, *token, *upload);
    request.timeout = 180s;

    const int session = m_account.session();
    const Answer reply = co_await send(request, Provider::sayvane, true, stop);
    if (!reply)
        co_return std::unexpected(reply.error());
    if (stop.stop_requested())
        co_return std::unexpected(FlowError::platform(u"Cancelled."_s));
    const Text text = textIn(reply->body);
    const QJsonObject answer = QJsonDocument::fromJson(reply->body).object();
    if (const auto remaining = Json::wholeNumber(answer.value("remainingSeconds"_L1));
        text && remaining && session == m_account.session())
        m_account.setRemainingSeconds(*remaining);
    co_return text;
}

void Transcriber::warmUp(std::stop_token stop)
{
    sendWarmUp(m_prefs.provider(), stop);
}

QCoro::Task<> Transcriber::sendWarmUp(Provider provider, std::stop_token stop)
{
    const auto isDue = [this] {
        return !m_lastWarmUp || m_clock.monotonic() - *m_lastWarmUp >= minimumWarmUpInterval;
    };
    if (!isDue())
        co_return;
    const auto credential = co_await m_credentials.apiKey(provider, stop);
    if (!credential || !isDue())
        co_return;
    // Noted before the request, so that failures are throttled too.
    m_lastWarmUp = m_clock.monotonic();
    const auto url = endpoint(u"/models"_s, provider);
    if (!url)
        co_return;
    const HttpRequest request{.method = "GET",
                              .url = *url,
                              .headers = {{"Authorization", "Bearer " + credential->toUtf8()}},
                              .body = {},
                              .timeout = 10s,
                              .largestAnswer =
                                  largestModelList}; // cut off, it would take the connection along
    co_await m_http.send(request, stop);
}
