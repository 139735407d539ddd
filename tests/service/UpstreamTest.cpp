#include "Exchange.h"
#include "ServiceProcess.h"
#include "StandInUpstream.h"
#include "WavFile.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

/// A service that lets another server do its work.
class UpstreamTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void passesARecordingOn();
    void passesATextOn();
    void tellsFaultsApart_data();
    void tellsFaultsApart();
    void givesUpOnAnAnswerThatDoesNotCome();
    void trustsVerifiedServersOnly();
    void refusesBadSettings_data();
    void refusesBadSettings();

private:
    Exchange::Answer ask(const QByteArray &bytes) { return Exchange(m_service).ask(bytes); }
    Exchange::Answer cleanup(const QByteArray &members);
    int usedSeconds() { return ask(Exchange::request("GET /v1/me", m_token)).body[u"usedTodaySeconds"_s].toInt(-1); }

    StandInUpstream m_upstream;
    ServiceProcess m_service;
    QByteArray m_token;
};

const QByteArray key = "sk-very-secret";

void UpstreamTest::initTestCase()
{
    qputenv("SAYVANE_UPSTREAM_KEY", key + "\n");
    QVERIFY(m_service.start({u"--upstream-model=big-ears"_s, u"--upstream-chat-model=team/editor"_s, u"--upstream"_s,
                             m_upstream.address(), u"--upstream-timeout=2"_s, u"--models=/nowhere"_s}));
    m_token = m_service.session();
}

void UpstreamTest::passesARecordingOn()
{
    m_upstream.body = R"({"text":"  Käse, Tobin.\n"})";
    const QByteArray wav = WavFile{.samples = QByteArray(96'000, '\x1a')}.bytes();
    const auto answer = ask(Exchange::upload(
        m_token, Exchange::part("language", "de") + Exchange::part("prompt", "Tobin") + Exchange::recording(wav)));
    QCOMPARE(answer.status, 200);
    QCOMPARE(answer.body[u"text"_s].toString(), u"Käse, Tobin."_s);
    QCOMPARE(answer.body[u"model"_s].toString(), u"big-ears"_s);
    QCOMPARE(answer.body[u"seconds"_s].toInt(), 3);
    QCOMPARE(m_upstream.last.path, "/api/v1/audio/transcriptions");
    QCOMPARE(m_upstream.last.get_header_value("Authorization"), ("Bearer " + key).toStdString());
    QCOMPARE(m_upstream.lastPart("model"), "big-ears");
    QCOMPARE(m_upstream.lastPart("language"), "de");
    QCOMPARE(m_upstream.lastPart("prompt"), "Tobin");
    QVERIFY(m_upstream.lastPart("file") == wav);
    QVERIFY(!m_service.log().contains(key));
    const auto models = ask(Exchange::request("GET /v1/models/team/editor", m_token));
    QCOMPARE(models.body[u"id"_s].toString(), u"team/editor"_s);
}

Exchange::Answer UpstreamTest::cleanup(const QByteArray &members)
{
    return ask(Exchange::request("POST /v1/cleanup", m_token, "Content-Type: application/json\r\n", members));
}

void UpstreamTest::passesATextOn()
{
    m_upstream.body = R"({"choices":[{"message":{"content":"<think>hm</think>\n Ask Tobin now. <think>so"}}]})";
    const auto edited = cleanup(R"({"text":" um ask tobin now ","vocabulary":"Tobin"})");
    QCOMPARE(edited.body[u"text"_s].toString(), u"Ask Tobin now."_s);
    QCOMPARE(edited.body[u"model"_s].toString(), u"team/editor"_s);
    const auto sent = QJsonDocument::fromJson(QByteArray::fromStdString(m_upstream.last.body)).object();
    QCOMPARE(sent[u"model"_s].toString(), u"team/editor"_s);
    QVERIFY(sent[u"messages"_s][0][u"content"_s].toString().endsWith(u": Tobin"_s));
    QCOMPARE(sent[u"messages"_s][1][u"content"_s].toString(), u"um ask tobin now"_s);

    m_upstream.body = R"({"choices":[{"finish_reason":"length","message":{"content":"Ask"}}]})"; // half a text
    QCOMPARE(cleanup(R"({"text":"ask tobin right now"})").code(), u"upstream_error"_s);
    m_upstream.body = R"({"choices":[{"message":{"content":"<think>nothing left"}}]})";
    QCOMPARE(cleanup(R"({"text":"ask tobin right now"})").body[u"text"_s].toString(), u"ask tobin right now"_s);
    const int before = m_upstream.requests;
    QVERIFY(cleanup(R"({"text":"one two three"})").body[u"skipped"_s].toBool());
    QCOMPARE(m_upstream.requests, before);
}

void UpstreamTest::tellsFaultsApart_data()
{
    QTest::addColumn<int>("upstreamStatus");
    QTest::addColumn<QByteArray>("upstreamBody");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("words");
    const auto row = [](const char *name, int upstream, const QByteArray &body, int status, const char *code,
                        const char *words = "") {
        QTest::newRow(name) << upstream << body << status << QString::fromUtf8(code) << QString::fromUtf8(words);
    };
    const QByteArray reason = R"({"error":{"message":"Audio is\ntoo short."}})";
    row("key rejected", 401, R"({"error":{"message":"Incorrect key sk-very"}})", 502, "upstream_auth", "rejected.");
    row("busy", 429, reason, 429, "upstream_rate_limited");
    row("too large", 413, "<html>", 413, "payload_too_large");
    row("refused with a reason", 400, reason, 502, "upstream_error", "refused: Audio is too short.");
    row("unknown model", 404, reason, 502, "upstream_error", "failed. Try again.");
    row("elsewhere", 301, {}, 502, "upstream_error");
    row("failed", 500, "{\"error\":[[", 502, "upstream_error");
    row("late behind a gateway", 504, {}, 504, "upstream_timeout");
    row("not JSON", 200, "hello", 502, "upstream_error");
    row("no text", 200, R"({"text":1})", 502, "upstream_error");
    row("endless", 200, QByteArray(5'000'000, ' '), 502, "upstream_error");
}

void UpstreamTest::tellsFaultsApart()
{
    QFETCH(int, upstreamStatus);
    QFETCH(QByteArray, upstreamBody);
    QFETCH(int, status);
    QFETCH(QString, code);
    QFETCH(QString, words);
    m_upstream.status = upstreamStatus;
    m_upstream.body = upstreamBody.toStdString();
    m_upstream.retryAfter = "7";
    const int before = usedSeconds();
    const auto answer = ask(Exchange::upload(m_token, Exchange::recording(WavFile::silence(3))));
    m_upstream.status = 200;
    m_upstream.retryAfter.clear();
    QCOMPARE(answer.status, status);
    QCOMPARE(answer.code(), code);
    QVERIFY2(answer.message().endsWith(words), qPrintable(answer.message()));
    QCOMPARE(answer.head.contains("Retry-After: 7\r\n"), status == 429);
    QCOMPARE(usedSeconds(), before);
}

void UpstreamTest::givesUpOnAnAnswerThatDoesNotCome()
{
    const QByteArray upload = Exchange::upload(m_token, Exchange::recording(WavFile::silence(3)));
    const int before = usedSeconds();
    m_upstream.holdsBack = true;
    const auto late = ask(upload);
    QCOMPARE(late.status, 504);
    QCOMPARE(late.code(), u"upstream_timeout"_s);
    QCOMPARE(usedSeconds(), before);

    Exchange waiting(m_service);
    const int requests = m_upstream.requests;
    QVERIFY(waiting.send(upload));
    QTRY_VERIFY(m_upstream.requests > requests);
    QCOMPARE(m_service.end(), 0);
    QCOMPARE(waiting.receive().code(), u"stopping"_s);

    m_upstream.holdsBack = false;
    QVERIFY(m_service.start({u"--upstream"_s, u"http://127.0.0.1:1"_s, u"--upstream-model=x"_s}));
    const auto nobody = ask(upload);
    QCOMPARE(nobody.status, 502);
    QCOMPARE(nobody.code(), u"upstream_unreachable"_s);
}

void UpstreamTest::trustsVerifiedServersOnly()
{
    ServiceProcess fleet;
    QVERIFY(fleet.start({u"--decoders=1"_s}));
    QFile keyFile(fleet.folder() + u"/upstream-key"_s);
    QVERIFY(keyFile.open(QFile::WriteOnly));
    keyFile.write(fleet.session() + '\n');
    keyFile.close();
    const QStringList options{u"--upstream=https://localhost:%1/v1"_s.arg(fleet.port()),
                              u"--upstream-model=pocketsphinx-en-us"_s, u"--upstream-key-file"_s, keyFile.fileName()};
    QFile clip(QStringLiteral(SPEECH_SAMPLES "/sense_and_sensibility_01_austen_64kb-0880.wav"));
    QVERIFY(clip.open(QFile::ReadOnly));
    const QByteArray wav = clip.readAll();

    ServiceProcess wary;
    QVERIFY(wary.start(options));
    const auto refused = Exchange(wary).ask(Exchange::upload(wary.session(), Exchange::recording(wav)));
    QCOMPARE(refused.code(), u"upstream_unreachable"_s);
    QVERIFY(!fleet.log().contains("POST"));

    qputenv("SSL_CERT_FILE", QFile::encodeName(fleet.folder() + u"/certificate.pem"_s));
    ServiceProcess trusting;
    QVERIFY(trusting.start(options));
    qunsetenv("SSL_CERT_FILE");
    const auto heard = Exchange(trusting).ask(Exchange::upload(trusting.session(), Exchange::recording(wav)));
    QVERIFY(heard.body[u"text"_s].toString().endsWith(u"young man."_s));
}

void UpstreamTest::refusesBadSettings_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("speech in clear to another machine")
        << QStringList{u"--upstream=http://example.com/v1"_s, u"--upstream-model=a"_s} << 64;
    QTest::newRow("another machine with a misleading name")
        << QStringList{u"--upstream=http://127.example.com"_s, u"--upstream-model=a"_s} << 64;
    QTest::newRow("port out of range") << QStringList{u"--upstream=https://[::1]:70000/v1"_s, u"--upstream-model=a"_s}
                                       << 64;
    QTest::newRow("key in the address") << QStringList{u"--upstream=https://a:b@example.com"_s} << 64;
    QTest::newRow("no model") << QStringList{u"--upstream=https://example.com"_s} << 64;
    QTest::newRow("model alone") << QStringList{u"--upstream-model=a"_s} << 64;
    QTest::newRow("no key file") << QStringList{u"--upstream=https://example.com"_s, u"--upstream-model=a"_s,
                                                u"--upstream-key-file=/nowhere"_s}
                                 << 69;
}

void UpstreamTest::refusesBadSettings()
{
    QFETCH(QStringList, options);
    QFETCH(int, exitCode);
    ServiceProcess service;
    QCOMPARE(service.run(QStringList{u"serve"_s, u"--data"_s, service.folder(), u"--port=0"_s} + options).exitCode,
             exitCode);
}

QTEST_GUILESS_MAIN(UpstreamTest)
#include "UpstreamTest.moc"
