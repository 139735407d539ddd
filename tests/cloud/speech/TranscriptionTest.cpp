#include "cloud/speech/SpeechFixture.h"

#include "cloud/speech/SpeechFailure.h"

#include <QRegularExpression>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

QByteArray part(const QByteArray &name, const QByteArray &value)
{
    return "--BOUNDARY\r\nContent-Disposition: form-data; name=\"" + name + "\"\r\n\r\n" + value + "\r\n";
}

} // namespace

class TranscriptionTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<SpeechFixture>(); }
    void cleanup() { m.reset(); }

    void uploadsTheRecording_data();
    void uploadsTheRecording();
    void readsTheAnswer();
    void explainsARefusal_data();
    void explainsARefusal();
    void passesOnWhatTheMachineSays();
    void knowsAGoneModel();
    void aGoneModelIsReplacedOnce_data();
    void aGoneModelIsReplacedOnce();
    void theProviderOfTheRequestIsTheOneBlamed();
    void warmsUpOnceAMinute();
    void stoppingEndsItQuietly();

private:
    std::unique_ptr<SpeechFixture> m;
};

void TranscriptionTest::uploadsTheRecording_data()
{
    QTest::addColumn<QString>("provider");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("vocabulary");
    QTest::addColumn<QString>("url");
    QTest::addColumn<QByteArray>("parts");
    const auto row = [](const char *name, const QString &provider, const QString &language, const QString &vocabulary,
                        const QString &url, const QByteArray &parts) {
        QTest::newRow(name) << provider << language << vocabulary << url << parts;
    };
    const QString groq = u"https://api.groq.com/openai/v1/audio/transcriptions"_s;
    const QByteArray groqModel = part("model", "whisper-large-v3-turbo") + part("response_format", "json");
    const QByteArray openAIModel = part("model", "gpt-4o-mini-transcribe") + part("response_format", "json");
    row("blank language and vocabulary", u"groq"_s, u" \t"_s, u" \n\n "_s, groq, groqModel);
    row("vocabulary trimmed at its ends", u"groq"_s, u"gu"_s, u"\n Tobin,  Mären \n"_s, groq,
        groqModel + part("language", "gu") + part("prompt", "Vocabulary that may appear: Tobin,  Mären"));
    row("openai", u"openai"_s, u"en"_s, {}, u"https://api.openai.com/v1/audio/transcriptions"_s,
        openAIModel + part("language", "en"));
    row("service", u"sayvane"_s, {}, u" \n"_s, u"https://service.test/v1/transcribe"_s, {});
    row("service with everything", u"sayvane"_s, u" en\t"_s, u" Tobin\n"_s, u"https://service.test/v1/transcribe"_s,
        part("language", "en") + part("prompt", "Tobin"));
}

void TranscriptionTest::uploadsTheRecording()
{
    QFETCH(QString, provider);
    QFETCH(QString, language);
    QFETCH(QString, vocabulary);
    QFETCH(QByteArray, parts);
    m->choose(provider);
    m->set(u"language"_s, language);
    m->set(u"vocabulary"_s, vocabulary);
    m->transcribe();
    QCOMPARE(m->http().requests.size(), 1);
    const HttpRequest request = m->http().requests.first();
    QCOMPARE(request.method, "POST");
    QTEST(request.url.toString(), "url");
    QCOMPARE(request.headers.size(), 2);
    const QByteArray key = provider == u"groq" ? "gsk_1" : provider == u"openai" ? "sk-1" : "svs_1";
    QCOMPARE(request.headers.first(), std::pair(QByteArray("Authorization"), QByteArray("Bearer " + key)));
    QCOMPARE(request.headers.last().first, "Content-Type");
    static const QRegularExpression type(
        u"^multipart/form-data; boundary=(Sayvane-[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12})$"_s);
    const auto match = type.match(QString::fromUtf8(request.headers.last().second));
    QVERIFY(match.hasMatch());
    QByteArray expected = parts +
                          "--BOUNDARY\r\nContent-Disposition: form-data; name=\"file\"; filename=\"audio.wav\"\r\n"
                          "Content-Type: audio/wav\r\n\r\n" +
                          m->recording + "\r\n--BOUNDARY--\r\n";
    QCOMPARE(request.body, expected.replace("BOUNDARY", match.captured(1).toUtf8()));
    QVERIFY(request.timeout == (provider == u"sayvane" ? 180s : 60s) && request.largestAnswer == 1 << 20);
    QVERIFY(request.resourceTimeout == 180s);
    m->answerJson({{u"text"_s, u" untouched\n"_s}});
    QCOMPARE(m->outcome(), u" untouched\n"_s);
}

void TranscriptionTest::readsTheAnswer()
{
    const QString unreadable = u"! The answer could not be read."_s;
    for (const QString &provider : {u"groq"_s, u"sayvane"_s}) {
        m->choose(provider);
        const auto read = [this](const QByteArray &body) {
            m->http().willAnswer(200, body);
            m->transcribe();
            return m->outcome();
        };
        QCOMPARE(read(R"({"text":"hi","x":[1]})"), u"hi"_s);
        QCOMPARE(read(R"({"text":""})"), u""_s);
        QCOMPARE(read(R"({"text":5})"), unreadable);
        QCOMPARE(read("<html>Sign in to the network</html>"), unreadable);
        QCOMPARE(read("{\"text\":\"\xFF\"}"), unreadable);
    }
}

void TranscriptionTest::explainsARefusal_data()
{
    QTest::addColumn<QString>("provider");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char *name, int status, const QByteArray &body, const QString &sentence,
                        const QString &provider = u"groq"_s) {
        QTest::newRow(name) << provider << status << body << sentence;
    };
    const QString rejected = u"Groq: API key rejected. Check it in Settings."_s;
    row("401 with a message", 401, R"({"error":{"message":"nope"}})", rejected);
    row("message", 400, R"({"error":{"message":" Too long. ","code":"c"}})", u"Groq:  Too long. "_s);
    row("code", 400, R"({"error":{"code":"too_long"}})", u"Groq: too_long"_s);
    row("a code of a wrong type", 400, R"({"error":{"message":"m","code":5}})", u"Groq: HTTP 400"_s);
    row("a redirect", 302, {}, u"OpenAI: HTTP 302"_s, u"openai"_s);
}

void TranscriptionTest::explainsARefusal()
{
    QFETCH(QString, provider);
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    QFETCH(QString, sentence);
    m->choose(provider);
    m->http().willAnswer(status, body, {{"Retry-After", "1"}});
    m->transcribe();
    QCOMPARE(m->outcome(), u"! "_s + sentence);
    QCOMPARE(m->result->error().kind, FlowError::Kind::api);
    QCOMPARE(m->machine.clock.pendingTimers(), 0U); // no second try
    QVERIFY(m->account.signedIn());
    QCOMPARE(m->http().requests.size(), 1); // nor a look for another model
}

void TranscriptionTest::passesOnWhatTheMachineSays()
{
    m->http().willAnswer(std::unexpected(TransportError{TransportError::Kind::offline, u"There is no network."_s}));
    m->transcribe();
    QCOMPARE(m->outcome(), u"! There is no network."_s);
    QFile::remove(m->wav);
    for (const QString &provider : {u"groq"_s, u"sayvane"_s}) {
        m->choose(provider);
        m->transcribe();
        QCOMPARE(m->outcome(), u"! No such file or directory"_s);
    }
    QCOMPARE(m->http().requests.size(), 1);
}

void TranscriptionTest::knowsAGoneModel()
{
    QVERIFY(ProviderFailure::mentionsUnknownModel(u"The MODEL `x` doesn't exist"_s));
    QVERIFY(ProviderFailure::mentionsUnknownModel(u"Groq: model_not_found"_s));
    QVERIFY(!ProviderFailure::mentionsUnknownModel(u"The voice was not found"_s));
    QVERIFY(!ProviderFailure::mentionsUnknownModel(u"The model is overloaded"_s));
}

void TranscriptionTest::aGoneModelIsReplacedOnce_data()
{
    QTest::addColumn<QByteArray>("offered");
    QTest::addColumn<int>("secondStatus"); // 0: no second try
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<QString>("storedModel");
    const QString gone = u"! Groq: model not found"_s;
    const QByteArray another = R"({"data":[{"id":"whisper-1"},{"id":"whisper-large-v3"}]})";
    QTest::newRow("works") << another << 200 << u"text"_s << u"whisper-large-v3"_s;
    QTest::newRow("gone as well") << another << 404 << gone << u"whisper-large-v3"_s;
    QTest::newRow("the same") << QByteArray(R"({"data":[{"id":"old"},{"id":"whisper"}]})") << 0 << gone << u"old"_s;
    QTest::newRow("none suits") << QByteArray(R"({"data":[{"id":"llama"}]})") << 0 << gone << u"old"_s;
    QTest::newRow("no list") << QByteArray("<html>") << 0 << gone << u"old"_s;
}

void TranscriptionTest::aGoneModelIsReplacedOnce()
{
    QFETCH(QByteArray, offered);
    QFETCH(int, secondStatus);
    m->set(u"transcriptionModel"_s, u"old"_s);
    m->set(u"chatModel"_s, u"chat"_s);
    m->http().willAnswer(404, R"({"error":{"message":"model not found"}})");
    m->http().willAnswer(200, offered);
    if (secondStatus != 0)
        m->http().willAnswer(secondStatus, R"({"text":"text","error":{"message":"model not found"}})");
    m->transcribe();
    QTEST(m->outcome(), "outcome");
    QTEST(m->prefs.transcriptionModel(), "storedModel");
    QCOMPARE(m->prefs.chatModel(), u"chat"_s);
    QCOMPARE(m->http().requests.size(), secondStatus != 0 ? 3 : 2);
    if (secondStatus == 0)
        return;
    QVERIFY(m->http().requests.first().headers != m->http().requests.last().headers); // a boundary of its own
    QVERIFY(m->http().requests.last().body.contains("name=\"model\"\r\n\r\nwhisper-large-v3\r\n"));
}

void TranscriptionTest::theProviderOfTheRequestIsTheOneBlamed()
{
    m->transcribe();
    m->choose(u"openai"_s);
    m->http().answer(401, {});
    QCOMPARE(m->outcome(), u"! Groq: API key rejected. Check it in Settings."_s);
    // Nor does the successor of its model get into the other one's settings.
    m->choose(u"groq"_s);
    m->set(u"transcriptionModel"_s, u"old"_s);
    m->transcribe();
    m->http().answer(404, R"({"error":{"code":"model_not_found"}})");
    m->choose(u"openai"_s);
    m->set(u"transcriptionModel"_s, u"whisper-1"_s);
    m->http().answer(200, R"({"data":[{"id":"whisper-large-v3"}]})");
    m->answerJson({{u"text"_s, u"hi"_s}});
    QCOMPARE(m->outcome(), u"hi"_s);
    QCOMPARE(m->http().requests.last().url.host(), u"api.groq.com"_s);
    QCOMPARE(m->prefs.transcriptionModel(), u"whisper-1"_s);
    m->choose(u"sayvane"_s);
    m->transcribe();
    m->choose(u"groq"_s);
    m->http().answer(502, {});
    m->machine.clock.advance(1500ms);
    QCOMPARE(m->http().requests.last().url.host(), u"service.test"_s);
    m->answerJson({{u"text"_s, u"hi"_s}, {u"remainingSeconds"_s, 9}});
    QCOMPARE(m->outcome(), u"hi"_s);
    QCOMPARE(m->account.remainingSeconds(), 9);
}

void TranscriptionTest::warmsUpOnceAMinute()
{
    const auto items = m->secrets().items.all();
    m->secrets().items.clear();
    const auto warmUpsAfter = [this](Clock::Duration wait) {
        m->machine.clock.advance(wait);
        m->transcriber.warmUp(m->stop.get_token());
        return m->http().warmUps.size();
    };
    QCOMPARE(warmUpsAfter(0s), 0); // no key, and no throttling for want of one
    m->secrets().items = items;
    QCOMPARE(warmUpsAfter(0s), 1);
    QCOMPARE(warmUpsAfter(59999ms), 1);
    QCOMPARE(warmUpsAfter(1ms), 2);
    const HttpRequest request = m->http().warmUps.last();
    QCOMPARE(request.url.toString(), u"https://api.groq.com/openai/v1/models"_s);
    QCOMPARE(request.method, "GET");
    QCOMPARE(request.headers, (QList<std::pair<QByteArray, QByteArray>>{{"Authorization", "Bearer gsk_1"}}));
    QVERIFY(request.timeout == 10s && request.body.isEmpty() && request.largestAnswer == 4 << 20);
}

void TranscriptionTest::stoppingEndsItQuietly()
{
    m->transcribe();
    m->http().answer(404, R"({"error":{"message":"model not found"}})"); // and now it looks for another
    m->stop.request_stop();
    QCoreApplication::processEvents();
    QVERIFY(m->outcome().startsWith(u"! "_s));
    QCOMPARE(m->http().requests.size(), 2);
    m->transcribe();
    QTRY_COMPARE(m->outcome(), u"! Cancelled."_s);
}

QTEST_GUILESS_MAIN(TranscriptionTest)
#include "TranscriptionTest.moc"
