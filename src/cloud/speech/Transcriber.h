#pragma once

#include "base/Clock.h"
#include "base/FlowError.h"
#include "base/HttpTransport.h"
#include "base/Provider.h"
#include "cloud/account/AccountClient.h"

#include <QCoroTask>
#include <QString>
#include <QStringList>

#include <expected>
#include <functional>
#include <optional>
#include <stop_token>

class AccountSessionStore;
class AccountStatus;
class Credentials;
class Prefs;

/// Turns a finished recording into text, and the text into what the user meant to write.
///
/// Every operation reads the provider and its settings afresh. A stop request ends it early with an
/// error that nobody should show.
class Transcriber
{
public:
    struct Collaborators
    {
        Prefs &prefs;
        const Credentials &credentials;
        AccountSessionStore &sessions;
        AccountStatus &account;
        HttpTransport &http;
        Clock &clock;
    };
    using Text = std::expected<QString, FlowError>;
    using Models = std::expected<QStringList, FlowError>;
    using Answer = std::expected<HttpResponse, FlowError>;
    /// Makes the request for a model id.
    using RequestBuilder = std::function<std::expected<HttpRequest, FlowError>(const QString &model)>;

    /// The largest answers that are read, in bytes; an hour of speech, every letter escaped, is half of the
    /// first.
    static constexpr qsizetype largestText = qsizetype{1024} * 1024;
    static constexpr qsizetype largestModelList = 4 * largestText;

    explicit Transcriber(const Collaborators &with);

    /// The transcript of the WAV file, as the provider sent it.
    QCoro::Task<Text> transcribe(QString filePath, std::stop_token stop);

    /// The transcript as it should be pasted; fewer than four words come back unchanged.
    QCoro::Task<Text> cleanup(QString transcript, std::stop_token stop);

    /// Opens the connection ahead of the upload, at most once a minute. Never fails aloud.
    void warmUp(std::stop_token stop);

    /// The ids of the models that the provider offers, in its order. The hosted service chooses its models
    /// itself: it answers with the one id "account" when the session works.
    QCoro::Task<Models> listModels(Provider provider, std::stop_token stop);

    /// The address of a path below the provider's base address.
    std::expected<QUrl, FlowError> endpoint(const QString &path, Provider provider) const;

    /// Sends for a model of the user's own provider. When the provider says that the model is gone, the
    /// best of those it offers is stored in its place and the request is sent once more with that.
    QCoro::Task<Answer> send(Provider provider, ModelPurpose purpose, QString model, RequestBuilder build,
                             std::stop_token stop);

    /// The one place where requests are performed: a successful answer, or what went wrong.
    QCoro::Task<Answer> send(HttpRequest request, Provider provider, bool mayRetry, std::stop_token stop);

private:
    QCoro::Task<Text> ownKeyTranscribe(Provider provider, QString filePath, std::stop_token stop);
    QCoro::Task<Text> accountTranscribe(QString filePath, std::stop_token stop);
    QCoro::Task<Text> ownKeyCleanup(Provider provider, QString transcript, std::stop_token stop);
    QCoro::Task<Text> accountCleanup(QString transcript, std::stop_token stop);
    QCoro::Task<Answer> buildAndSend(Provider provider, QString model, RequestBuilder build,
                                     std::stop_token stop);
    /// What to use instead of a model that is gone, stored for later requests too; none when there is
    /// nothing.
    QCoro::Task<std::optional<QString>> successor(ModelPurpose purpose, Provider provider, QString model,
                                                  std::stop_token stop);
    FlowError failure(const ServiceClient::Failure &why);
    QCoro::Task<> sendWarmUp(Provider provider, std::stop_token stop);

    Prefs &m_prefs;
    const Credentials &m_credentials;
    AccountStatus &m_account;
    HttpTransport &m_http;
    Clock &m_clock;
    ServiceClient m_service;
    AccountClient m_accountClient;
    std::optional<Clock::Duration> m_lastWarmUp;
};
