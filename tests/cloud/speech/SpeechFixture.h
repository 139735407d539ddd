#pragma once

#include "cloud/account/AccountSession.h"
#include "cloud/account/AccountStatus.h"
#include "cloud/account/Credentials.h"
#include "cloud/speech/Transcriber.h"
#include "preferences/Keychain.h"
#include "preferences/Prefs.h"
#include "support/FakeMachine.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <optional>

/// A transcriber over a fake machine, with a credential for every provider.
class SpeechFixture
{
public:
    /// A machine whose user has a key for every provider and is signed in.
    struct Machine : FakeMachine
    {
        Machine()
        {
            secrets.items = {{QStringLiteral("groq_api_key"), " gsk_1\n"},
                             {QStringLiteral("openai_api_key"), "sk-1"},
                             {QStringLiteral("sayvane_session"), "svs_1\n"}};
        }
    };

    /// Over the fake network, or over a real one.
    explicit SpeechFixture(HttpTransport *network = nullptr)
        : transcriber({prefs, credentials, sessions, account, network ? *network : machine.http, machine.clock})
    {
        choose(QStringLiteral("groq"));
        set(QStringLiteral("vocabulary"), QString());
        QFile file(wav);
        if (file.open(QIODevice::WriteOnly))
            file.write(recording);
    }

    /// Ends what is still under way.
    ~SpeechFixture() { stop.request_stop(); }

    FakeSecretStore &secrets() { return machine.secrets; }
    FakeTransport &http() { return machine.http; }
    void set(const QString &key, const QJsonValue &value) { machine.defaults.values.insert(key, value); }
    void choose(const QString &provider) { set(QStringLiteral("provider"), provider); }

    void transcribe() { keep(transcriber.transcribe(wav, stop.get_token())); }
    void cleanUp(const QString &text) { keep(transcriber.cleanup(text, stop.get_token())); }
    /// The ids joined by commas, or the error's sentence after "! ".
    QString listed(Provider provider)
    {
        const auto models = QCoro::waitFor(transcriber.listModels(provider, stop.get_token()));
        return models ? models->join(u',') : QStringLiteral("! ") + models.error().description;
    }
    void answerJson(const QJsonObject &body, int status = 200) { http().answer(status, QJsonDocument(body).toJson()); }

    /// The text, or the error's sentence after "! "; "waiting" as long as there is neither.
    QString outcome() const
    {
        if (!result)
            return QStringLiteral("waiting");
        return *result ? result->value() : QStringLiteral("! ") + result->error().description;
    }

    const QByteArray recording = QByteArray("RIFF\0\r\n--\xFFWAVE", 14);
    Machine machine;
    const QString wav = machine.folders.temporary() + QStringLiteral("/sayvane-test.wav");
    Prefs prefs{machine.defaults, QStringLiteral("https://service.test")};
    Keychain keychain{machine.secrets};
    AccountSessionStore sessions{keychain};
    AccountStatus account{sessions, prefs};
    Credentials credentials{keychain, sessions};
    Transcriber transcriber;
    std::stop_source stop;
    std::optional<Transcriber::Text> result;

private:
    QCoro::Task<> keep(QCoro::Task<Transcriber::Text> task)
    {
        result.reset();
        const Transcriber::Text text = co_await task;
        result = text;
    }
};
