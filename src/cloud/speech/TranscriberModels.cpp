#include "cloud/speech/Transcriber.h"

#include "cloud/account/Credentials.h"
#include "cloud/speech/ModelResolver.h"
#include "preferences/Prefs.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

Transcriber::Models idsIn(const QByteArray &json)
{
    const auto unreadable =
        std::unexpected(FlowError::platform(FlowError::tr("The answer could not be read.")));
    const QJsonValue data = QJsonDocument::fromJson(json).object().value("data"_L1);
    if (!data.isArray())
        return unreadable;
    QStringList ids;
    const QJsonArray entries = data.toArray();
    ids.reserve(entries.size());
    for (const QJsonValue &entry : entries) {
        const QJsonValue id = entry.toObject().value("id"_L1);
        if (!id.isString())
            return unreadable;
        ids.append(id.toString());
    }
    return ids;
}

} // namespace

QCoro::Task<Transcriber::Models> Transcriber::listModels(Provider provider, std::stop_token stop)
{
    const auto credential = co_await m_credentials.apiKey(provider, stop);
    if (!credential)
        co_return std::unexpected(credential.error());
    if (provider == Provider::sayvane) { // it has no list of models; that the session works is what counts
        const auto account = co_await m_accountClient.me(*credential, stop);
        if (!account)
            co_return std::unexpected(FlowError::api(account.error().message));
        co_return QStringList{u"account"_s};
    }
    const auto url = endpoint(u"/models"_s, provider);
    if (!url)
        co_return std::unexpected(url.error());
    const HttpRequest request{.method = "GET",
                              .url = *url,
                              .headers = {{"Authorization", "Bearer " + credential->toUtf8()}},
                              .body = {},
                              .timeout = 30s,
                              .largestAnswer = largestModelList};
    const Answer reply = co_await send(request, provider, true, stop);
    if (!reply)
        co_return std::unexpected(reply.error());
    co_return idsIn(reply->body);
}

QCoro::Task<std::optional<QString>> Transcriber::successor(ModelPurpose purpose, Provider provider,
                                                           QString model, std::stop_token stop)
{
    const Models available = co_await listModels(provider, stop);
    if (!available || stop.stop_requested())
        co_return std::nullopt;
    const auto found = ModelResolver::resolve(purpose, provider, *available, model);
    if (!found || *found == model)
        co_return std::nullopt;
    // A user who chose another provider meanwhile has that one's models in the preferences.
    if (m_prefs.provider() == provider)
        m_prefs.setModel(*found, purpose);
    co_return found;
}
