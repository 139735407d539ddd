#include "Exchange.h"
#include "ServiceProcess.h"
#include "WavFile.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

/// The OpenAI-compatible addresses refuse in that interface's own words.
class OpenAiTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void refuses_data();
    void refuses();
    void countsTheSameAllowance();

private:
    static QByteArray audio(const QByteArray &token, const QByteArray &texts,
                            const QByteArray &wav = WavFile::silence(1));

    ServiceProcess m_service;
    QByteArray m_token;
};

const QByteArray model = Exchange::part("model", "pocketsphinx-en-us");

void OpenAiTest::initTestCase()
{
    QVERIFY(m_service.start({u"--decoders=1"_s}));
    m_token = m_service.session();
}

QByteArray OpenAiTest::audio(const QByteArray &token, const QByteArray &texts, const QByteArray &wav)
{
    return Exchange::request("POST /v1/audio/transcriptions", token,
                             "Content-Type: multipart/form-data; boundary=Sayvane-1\r\n",
                             texts + Exchange::recording(wav));
}

void OpenAiTest::refuses_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("param");
    const auto row = [](const char *name, const QByteArray &bytes, int status, const char *code, const char *param) {
        QTest::newRow(name) << bytes << status << QString::fromUtf8(code) << QString::fromUtf8(param);
    };
    const auto form = [this](const QByteArray &texts) { return audio(m_token, texts); };
    const auto chat = [this](const QByteArray &members) {
        return Exchange::request("POST /v1/chat/completions", m_token, "Content-Type: application/json\r\n",
                                 R"({"messages":[{"role":"user","content":"hello"}],)" + members + "}");
    };
    row("wrong token", audio("svs_nobody", model), 401, "invalid_api_key", "");
    row("no token, models", Exchange::request("GET /v1/models", {}), 401, "invalid_api_key", "");
    row("unknown model", form(Exchange::part("model", "whisper-1")), 404, "model_not_found", "model");
    row("model not UTF-8", form(Exchange::part("model", "\xff")), 400, "bad_request", "");
    row("model with a slash", Exchange::request("GET /v1/models/a/b%FF", m_token), 404, "model_not_found", "model");
    row("no model", form({}), 400, "invalid_value", "model");
    row("subtitles", form(model + Exchange::part("response_format", "srt")), 400, "invalid_value", "response_format");
    row("stream", form(model + Exchange::part("stream", "true")), 400, "invalid_value", "stream");
    row("timestamps", form(model + Exchange::part("timestamp_granularities[]", "word")), 400, "invalid_value",
        "timestamp_granularities");
    row("language", form(model + Exchange::part("language", "gu")), 400, "unsupported_language", "language");
    row("not a recording", audio(m_token, model, "ID3"), 400, "bad_request", "file");
    row("too long", audio(m_token, model, WavFile::silence(820)), 413, "payload_too_large", "");
    row("not a form", Exchange::request("POST /v1/audio/transcriptions", m_token, {}, "{}"), 415,
        "unsupported_content_type", "");
    row("wrong method", Exchange::request("GET /v1/audio/transcriptions", m_token), 405, "method_not_supported", "");

    row("chat, not JSON", Exchange::request("POST /v1/chat/completions", m_token, {}, "["), 400, "bad_request", "");
    row("chat, unknown model", chat(R"("model":"gpt-4o")"), 404, "model_not_found", "model");
    row("chat, two choices", chat(R"("model":"sayvane-rules","n":2)"), 400, "invalid_value", "n");
    row("chat, tools", chat(R"("model":"sayvane-rules","tools":[{}])"), 400, "invalid_value", "tools");
    row("chat, a picture",
        chat(R"("model":"sayvane-rules","messages":[{"role":"user","content":[{"type":"image_url"}]}])"), 400,
        "invalid_value", "messages");
    row("chat, nobody speaks", chat(R"("model":"sayvane-rules","messages":[1,{"role":"system","content":"hello"}])"),
        400, "invalid_value", "messages");
    row("chat, too long", chat("\"model\":\"" + QByteArray(2'200'000, 'a') + '"'), 413, "payload_too_large", "");
}

void OpenAiTest::refuses()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, status);
    QFETCH(QString, code);
    QFETCH(QString, param);
    const auto answer = Exchange(m_service).ask(bytes);
    QCOMPARE(answer.status, status);
    QCOMPARE(answer.code(), code);
    const auto error = answer.body[u"error"_s].toObject();
    QVERIFY(error.contains(u"param"_s));
    QCOMPARE(error[u"param"_s].toString(), param);
    QCOMPARE(error[u"type"_s].toString(), u"invalid_request_error"_s);
    QVERIFY(answer.message().endsWith(QLatin1Char('.')));
}

void OpenAiTest::countsTheSameAllowance()
{
    const auto usedSeconds = [this] {
        return Exchange(m_service).ask(Exchange::request("GET /v1/me", m_token)).body[u"usedTodaySeconds"_s].toInt();
    };
    QCOMPARE(usedSeconds(), 0); // whatever was refused was not charged
    const auto answer = Exchange(m_service).ask(
        audio(m_token, model + Exchange::part("temperature", "0") + Exchange::part("response_format", "verbose_json")));
    QCOMPARE(answer.status, 200);
    QCOMPARE(answer.body[u"duration"_s].toDouble(), 1.0);
    QCOMPARE(usedSeconds(), 1);
    const QByteArray frugal = m_service.session(1); // the same account, now with one minute a day
    QCOMPARE(Exchange(m_service).ask(audio(frugal, model, WavFile::silence(60))).status, 200);
    const auto refused = Exchange(m_service).ask(audio(frugal, model));
    QCOMPARE(refused.status, 429);
    QCOMPARE(refused.code(), u"insufficient_quota"_s);
    QVERIFY(refused.head.contains("x-should-retry: false"));
}

QTEST_GUILESS_MAIN(OpenAiTest)
#include "OpenAiTest.moc"
