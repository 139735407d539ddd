#include "cloud/speech/ChatRequest.h"
#include "cloud/speech/SpeechFixture.h"
#include "machine/network/NetworkTransport.h"
#include "support/server/ConnectProxy.h"
#include "support/server/TlsServer.h"

#include <QCoroTask>
#include <QJsonArray>
#include <QtTest>

using namespace Qt::StringLiterals;

/// Dictation with the user's own key, over the program's own network code, to the providers' addresses: a
/// proxy leads there, to a stand-in whose certificate the environment makes trusted.
class OwnKeyTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksTheProviderByteForByte_data();
    void asksTheProviderByteForByte();
    void whatTheNetworkDoesIsToldAndNothingElseIsDone_data();
    void whatTheNetworkDoesIsToldAndNothingElseIsDone();

private:
    /// The head of a request, less the lengths and names that vary.
    static QByteArray head(const TlsServer::Request &request)
    {
        return request.bytes.first(request.bytes.indexOf("\r\n\r\n"));
    }
    static QByteArray part(const QByteArray &name, const QByteArray &value)
    {
        return "Content-Disposition: form-data; name=\"" + name + "\"\r\n\r\n" + value + "\r\n";
    }
};

namespace {

/// A provider's stand-in, its proxy, and a user of it.
struct Scene
{
    explicit Scene(const QByteArray &providerHost) : host(providerHost), server(authority.issue({.name = host}))
    {
        QFile file(folder.filePath(u"authority.pem"_s));
        if (!file.open(QIODevice::WriteOnly) || file.write(authority.certificate) < 0)
            qFatal("The test cannot write its file.");
        qputenv("SSL_CERT_FILE", file.fileName().toLocal8Bit());
        qputenv("https_proxy", proxy.address());
        proxy.lead(host + ":443", server.serverPort());
        network.emplace("Sayvane/0.1");
        user.emplace(&*network);
        user->choose(host.contains("groq") ? u"groq"_s : u"openai"_s);
    }
    QString outcome()
    {
        const bool came = QTest::qWaitFor([this] { return user->result.has_value(); }, 20000);
        return came ? user->outcome() : u"nothing"_s;
    }

    const QByteArray host;
    QTemporaryDir folder;
    const TestCertificate authority = TestCertificate::authority();
    TlsServer server;
    ConnectProxy proxy;
    std::optional<NetworkTransport> network;
    std::optional<SpeechFixture> user;
};

} // namespace

void OwnKeyTest::asksTheProviderByteForByte_data()
{
    QTest::addColumn<QByteArray>("host");
    QTest::addColumn<QByteArray>("base");
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QByteArray>("model");
    QTest::newRow("Groq") << QByteArray("api.groq.com") << QByteArray("/openai/v1") << QByteArray("gsk_1")
                          << QByteArray("whisper-large-v3-turbo");
    QTest::newRow("OpenAI") << QByteArray("api.openai.com") << QByteArray("/v1") << QByteArray("sk-1")
                            << QByteArray("gpt-4o-mini-transcribe");
}

void OwnKeyTest::asksTheProviderByteForByte()
{
    QFETCH(QByteArray, host);
    QFETCH(QByteArray, base);
    QFETCH(QByteArray, key);
    QFETCH(QByteArray, model);
    Scene scene(host);
    scene.user->set(u"language"_s, u" gu "_s);
    scene.user->set(u"vocabulary"_s, u"Tobin, મારેન\n"_s);

    scene.user->transcriber.warmUp({});
    QTRY_COMPARE(scene.server.requests().size(), 1);
    scene.server.answer(TlsServer::Answer::json(200, R"({"text":" um \u0a86\u0a9c one two "})"));
    scene.user->transcribe();
    QCOMPARE(scene.outcome(), u" um આજ one two "_s);
    scene.server.answer(TlsServer::Answer::json(200, R"({"choices":[{"message":{"content":"આજ one two."}}]})"));
    scene.user->cleanUp(u" um આજ one two "_s);
    QCOMPARE(scene.outcome(), u"આજ one two."_s);
    scene.server.answer(TlsServer::Answer::json(200, R"({"data":[{"id":"a"},{"id":"b"}]})"));
    QCOMPARE(scene.user->listed(scene.user->prefs.provider()), u"a,b"_s);

    QCOMPARE(scene.proxy.targets(), QList<QByteArray>{host + ":443"}); // one connection for all
    QCOMPARE(scene.server.handshakes(), 1);
    const auto requests = scene.server.requests();
    const auto common = [&](const QByteArray &line) {
        return line + " HTTP/1.1\r\nHost: " + host +
               "\r\nUser-Agent: Sayvane/0.1\r\nAccept-Encoding: " + requests.first().header("Accept-Encoding") +
               "\r\nAuthorization: Bearer " + key;
    };
    QCOMPARE(head(requests.at(0)), common("GET " + base + "/models"));
    QCOMPARE(head(requests.at(3)), head(requests.at(0)));

    const QByteArray type = requests.at(1).header("Content-Type");
    const QByteArray boundary = type.sliced(type.indexOf('=') + 1);
    const QByteArray line = "--" + boundary + "\r\n";
    const QByteArray form = line + part("model", model) + line + part("response_format", "json") + line +
                            part("language", "gu") + line + part("prompt", "Vocabulary that may appear: Tobin, મારેન") +
                            line +
                            "Content-Disposition: form-data; name=\"file\"; filename=\"audio.wav\"\r\n"
                            "Content-Type: audio/wav\r\n\r\n" +
                            scene.user->recording + "\r\n--" + boundary + "--\r\n";
    QCOMPARE(requests.at(1).bytes, common("POST " + base + "/audio/transcriptions") +
                                       "\r\nContent-Type: multipart/form-data; boundary=" + boundary +
                                       "\r\nContent-Length: " + QByteArray::number(form.size()) + "\r\n\r\n" + form);

    QCOMPARE(head(requests.at(2)), common("POST " + base + "/chat/completions") +
                                       "\r\nContent-Type: application/json\r\nContent-Length: " +
                                       QByteArray::number(requests.at(2).body.size()));
    const QJsonArray messages = QJsonDocument::fromJson(requests.at(2).body).object().value("messages"_L1).toArray();
    QCOMPARE(messages.at(0).toObject().value("content"_L1).toString(), CleanupPrompt::with(u"Tobin, મારેન"_s));
    QCOMPARE(messages.at(1).toObject().value("content"_L1).toString(), u" um આજ one two "_s);
}

void OwnKeyTest::whatTheNetworkDoesIsToldAndNothingElseIsDone_data()
{
    QTest::addColumn<TlsServer::Answer>("answer");
    QTest::addColumn<QString>("outcome");
    const QByteArray half = TlsServer::Answer::json(200, R"({"text":"one two"})").bytes.chopped(5);
    QTest::newRow("half an answer") << TlsServer::Answer{.bytes = half, .afterwards = TlsServer::Afterwards::close}
                                    << u"! api.groq.com closed the connection before its whole answer had arrived."_s;
    QTest::newRow("a sign-in page") << TlsServer::Answer::html(200, "<html>Sign in</html>")
                                    << u"! The answer could not be read."_s;
    QTest::newRow("a page of an outage") << TlsServer::Answer::html(503, "<html>\xFF</html>") << u"! Groq: HTTP 503"_s;
    QTest::newRow("a refusal") << TlsServer::Answer::json(413, R"({"error":{"message":"Too large"}})")
                               << u"! Groq: Too large"_s;
    QTest::newRow("words of a refusal without end")
        << TlsServer::Answer::json(400, R"({"error":{"code":")" + QByteArray(1'000'000, 'x') + R"("}})")
        << u"! Groq: "_s + QString(1000, u'x') + u'…';
    QTest::newRow("ten megabytes of a refusal")
        << TlsServer::Answer::json(401, R"({"error":{"code":")" + QByteArray(10'000'000, 'x') + R"("}})")
        << u"! Groq: API key rejected. Check it in Settings."_s;
    QTest::newRow("ten megabytes of a transcript")
        << TlsServer::Answer::json(200, R"({"text":")" + QByteArray(10'000'000, 'x') + R"("})")
        << u"! The answer could not be read."_s;
    QTest::newRow("a million letters") << TlsServer::Answer::json(200,
                                                                  R"({"text":")" + QByteArray(1'000'000, 'x') + R"("})")
                                       << QString(1'000'000, u'x');
}

void OwnKeyTest::whatTheNetworkDoesIsToldAndNothingElseIsDone()
{
    QFETCH(TlsServer::Answer, answer);
    QFETCH(QString, outcome);
    Scene scene("api.groq.com");
    scene.server.answer(answer);
    scene.user->transcribe();
    QVERIFY(scene.outcome() == outcome);
    QCOMPARE(scene.server.requests().size(), 1);
    QVERIFY(QFile::exists(scene.user->wav));
    // Where the proxy does not lead there, nothing is sent past it.
    qputenv("https_proxy", ConnectProxy().address());
    scene.network.emplace("Sayvane/0.1");
    scene.user->transcribe();
    QCOMPARE(scene.outcome(), u"! The proxy for api.groq.com cannot be reached."_s);
    QCOMPARE(scene.server.requests().size(), 1);
}

QTEST_GUILESS_MAIN(OwnKeyTest)
#include "OwnKeyTest.moc"
