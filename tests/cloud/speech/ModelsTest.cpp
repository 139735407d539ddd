#include "cloud/speech/ModelResolver.h"
#include "cloud/speech/SpeechFixture.h"

#include <QJsonArray>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// Which models a provider offers, and which of them is taken.
class ModelsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<SpeechFixture>(); }
    void cleanup() { m.reset(); }

    void choosesAModel_data();
    void choosesAModel();
    void readsTheSizeOffTheName();
    void reportsTheConnection();
    void listsWhatIsOffered_data();
    void listsWhatIsOffered();

private:
    std::unique_ptr<SpeechFixture> m;
};

void ModelsTest::choosesAModel_data()
{
    QTest::addColumn<QString>("provider");
    QTest::addColumn<QString>("current");
    QTest::addColumn<QString>("available");
    QTest::addColumn<QString>("transcription"); // "-" for none
    QTest::addColumn<QString>("chat");
    const auto row = [](const char *name, const QString &provider, const QString &current, const QString &available,
                        const QString &transcription, const QString &chat) {
        QTest::newRow(name) << provider << current << available << transcription << chat;
    };
    const QString groq = u"groq"_s, openai = u"openai"_s;
    row("the user's own, as the provider spells it", groq, u" WHISPER-large-v3\n"_s,
        u"whisper-large-v3-turbo, whisper-Large-v3 "_s, u"whisper-Large-v3"_s, u"whisper-Large-v3"_s);
    row("ranked, not ordered", groq, u"gone"_s, u"distil-whisper-large-v3-en,whisper-large-v3"_s, u"whisper-large-v3"_s,
        u"-"_s);
    row("no guard model", groq, u"gone"_s,
        u"llama-guard-4-12b,llama-3.1-8b-instant,meta-llama/llama-4-scout-17b-16e-instruct"_s, u"-"_s,
        u"llama-3.1-8b-instant"_s);
    row("the smallest", groq, {}, u"Llama-70b,x-llama-8B,llama-9b,llama-x"_s, u"-"_s, u"x-llama-8B"_s);
    row("the shorter of one size, then the earlier", groq, {}, u"qwen-8b-zz,qwen-8b-b,qwen-8b-a"_s, u"-"_s,
        u"qwen-8b-a"_s);
    row("the exact name among longer ones", openai, {}, u"gpt-4o-mini-x-1b,GPT-4o-mini,gpt-4o-mini"_s, u"-"_s,
        u"GPT-4o-mini"_s);
    row("a marked model when there is no other", openai, {}, u"gpt-4o-mini-transcribe,whisper-1"_s,
        u"gpt-4o-mini-transcribe"_s, u"gpt-4o-mini-transcribe"_s);
    row("an earlier preference over a better match", openai, {}, u"gpt-4o-1b,gpt-5-mini,my-gpt-4.1-nano-long-70b"_s,
        u"-"_s, u"my-gpt-4.1-nano-long-70b"_s);
    row("only blanks", groq, u" "_s, u" ,\n,"_s, u"-"_s, u"-"_s);
    row("the service", u"sayvane"_s, {}, u"account,whisper-1,gpt-4o"_s, u"-"_s, u"-"_s);
}

void ModelsTest::choosesAModel()
{
    QFETCH(QString, provider);
    QFETCH(QString, current);
    QFETCH(QString, available);
    const auto resolved = [&](ModelPurpose purpose) {
        return ModelResolver::resolve(purpose, *Providers::fromRawValue(provider), available.split(u','), current)
            .value_or(u"-"_s);
    };
    QTEST(resolved(ModelPurpose::transcription), "transcription");
    QTEST(resolved(ModelPurpose::chat), "chat");
}

void ModelsTest::readsTheSizeOffTheName()
{
    const auto size = [](const QString &id) { return ModelResolver::parameterCount(id).value_or(-1); };
    QCOMPARE(size(u"openai/GPT-oss-120B"_s), 120);
    QCOMPARE(size(u"a-70b_b-3.6b-12bit-b"_s), 6); // a decimal point separates
    QCOMPARE(size(u"llama-8bb-x9b"_s), -1);
    QCOMPARE(size({}), -1);
}

void ModelsTest::reportsTheConnection()
{
    const auto report = [](const QStringList &ids, const QString &transcription, const QString &chat) {
        const auto result = ConnectionResult::applyResolvedModels(ids, Provider::groq, transcription, chat);
        return result.status + u'|' + result.detail + u'|' + result.transcriptionModel.value_or(u"-"_s) + u'|' +
               result.chatModel.value_or(u"-"_s);
    };
    QCOMPARE(report({u"whisper-1"_s, u"llama-%1"_s}, u"whisper-1"_s, u"llama-%1"_s),
             u"Connected to Groq: 2 models available|"
             "In use: whisper-1 for transcription, llama-%1 for cleanup.|-|-"_s);
    QCOMPARE(report({u"whisper-1"_s}, u" whisper-1"_s, u"old"_s), // the stored text is compared exactly
             u"Connected to Groq: 1 models available|Transcription model updated to whisper-1. "
             "No cleanup model here matches old. In use: whisper-1 for transcription, old for cleanup.|whisper-1|-"_s);
    QCOMPARE(report({u"qwen-%2"_s}, u"%1"_s, {}),
             u"Connected to Groq: 1 models available|No transcription model here matches %1. "
             "Cleanup model updated to qwen-%2. In use: %1 for transcription, qwen-%2 for cleanup.|-|qwen-%2"_s);
}

void ModelsTest::listsWhatIsOffered_data()
{
    QTest::addColumn<Provider>("provider");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("outcome");
    const auto row = [](const char *name, Provider provider, int status, const QByteArray &body,
                        const QString &outcome) { QTest::newRow(name) << provider << status << body << outcome; };
    const QString unreadable = u"! The answer could not be read."_s;
    row("in their order", Provider::groq, 200, R"({"data":[{"id":" b "},{"id":"a","x":1}],"object":"list"})",
        u" b ,a"_s);
    row("none", Provider::openai, 200, R"({"data":[]})", {});
    row("an entry without an id", Provider::groq, 200, R"({"data":[{"id":"a"},{}]})", unreadable);
    row("no list", Provider::groq, 200, "{}", unreadable);
    row("a web page", Provider::groq, 200, "<html>", unreadable);
    row("a rejected key", Provider::openai, 401, "{}", u"! OpenAI: API key rejected. Check it in Settings."_s);
    row("an outage", Provider::groq, 503, "<html>", u"! Groq: HTTP 503"_s);
    row("the service", Provider::sayvane, 200, R"({"remainingSeconds":9})", u"account"_s);
    row("the service refuses", Provider::sayvane, 403, "{}", u"! This account cannot be used. Please get in touch."_s);
    QJsonArray many;
    for (int i = 0; i < 10000; ++i)
        many.append(QJsonObject{{u"id"_s, u"m"_s}});
    row("ten thousand", Provider::groq, 200, QJsonDocument(QJsonObject{{u"data"_s, many}}).toJson(),
        QStringList(10000, u"m"_s).join(u','));
}

void ModelsTest::listsWhatIsOffered()
{
    QFETCH(Provider, provider);
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    m->http().willAnswer(status, body);
    QTEST(m->listed(provider), "outcome");
    const HttpRequest request = m->http().requests.last();
    const QByteArray key = provider == Provider::groq ? "gsk_1" : provider == Provider::openai ? "sk-1" : "svs_1";
    QCOMPARE(request.headers.contains({"Accept", "application/json"}), provider == Provider::sayvane);
    QVERIFY(request.headers.contains({"Authorization", "Bearer " + key}));
    QVERIFY(request.method == "GET" && request.timeout == 30s && request.body.isEmpty());
    QCOMPARE(request.largestAnswer, request.url.path().endsWith("/models"_L1) ? 4 << 20 : 256 << 10);
    if (provider != Provider::sayvane)
        QVERIFY(request.url.path().endsWith(u"/v1/models"_s));
    m->secrets().items.clear();
    QCOMPARE(m->listed(provider), u"! "_s + FlowError::noAPIKey(provider).description);
    QCOMPARE(m->http().requests.size(), 1);
}

QTEST_GUILESS_MAIN(ModelsTest)
#include "ModelsTest.moc"
