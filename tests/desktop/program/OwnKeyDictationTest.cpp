#include "desktop/program/Desk.h"
#include "history/HistoryFile.h"
#include "history/HistoryStore.h"
#include "support/server/ConnectProxy.h"
#include "support/server/TlsServer.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString clip = u"sense_and_sensibility_01_austen_64kb-0880"_s;

void write(const QString &path, const QByteArray &bytes)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

} // namespace

/// The installed program with a key of the user's own, as it is: a proxy and a certificate authority of the
/// environment lead the provider's address to a stand-in.
class OwnKeyDictationTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void dictatesWithTheUsersKey_data();
    void dictatesWithTheUsersKey();
};

void OwnKeyDictationTest::dictatesWithTheUsersKey_data()
{
    QTest::addColumn<QByteArray>("provider");
    QTest::addColumn<QByteArray>("host");
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QByteArray>("offered"); // instead of a model that is gone; empty: none is gone
    QTest::addColumn<QString>("transcriptionModel");
    QTest::addColumn<QString>("chatModel");
    QTest::addColumn<double>("perHour");
    QTest::newRow("Groq") << QByteArray("groq") << QByteArray("api.groq.com") << QByteArray("gsk_secret1")
                          << QByteArray() << u"whisper-large-v3-turbo"_s << u"openai/gpt-oss-120b"_s << 0.04;
    QTest::newRow("OpenAI, its model retired")
        << QByteArray("openai") << QByteArray("api.openai.com") << QByteArray("sk-secret2")
        << QByteArray(R"({"data":[{"id":"gpt-4o"},{"id":"whisper-1"}]})") << u"whisper-1"_s << u"gpt-4o-mini"_s << 0.36;
}

void OwnKeyDictationTest::dictatesWithTheUsersKey()
{
    QFETCH(QByteArray, provider);
    QFETCH(QByteArray, host);
    QFETCH(QByteArray, key);
    QFETCH(QByteArray, offered);
    QFETCH(double, perHour);
    Desk desk;
    const TestCertificate authority = TestCertificate::authority();
    TlsServer server(authority.issue({.name = host}));
    ConnectProxy proxy;
    proxy.lead(host + ":443", server.serverPort());
    write(QDir::homePath() + u"/authority.pem"_s, authority.certificate);
    qputenv("SSL_CERT_FILE", (QDir::homePath() + u"/authority.pem"_s).toLocal8Bit());
    qputenv("HTTPS_PROXY", proxy.address());
    write(QDir::homePath() + u"/.config/sayvane-run/preferences.json"_s, R"({"provider":")" + provider + R"("})");
    write(desk.profileFolder() + u"/Sayvane/history.json"_s, "[]");
    desk.run(QStringLiteral(PREFIX "/bin/sayvane"),
             {u"--profile"_s, u"run"_s, u"--store-secret"_s, QString::fromLatin1(provider + "_api_key")}, key + "\n");

    server.answer(TlsServer::Answer::json(200, "{}")); // the warm-up
    if (!offered.isEmpty()) {
        server.answer(TlsServer::Answer::json(404, R"({"error":{"message":"The model was decommissioned"}})"));
        server.answer(TlsServer::Answer::json(200, offered));
    }
    server.answer(TlsServer::Answer::json(200, R"({"text":" um હું એટલે કે Friday સુધીમાં "})"));
    server.answer(
        TlsServer::Answer::json(200, R"({"choices":[{"message":{"content":"<think>a</think>\nહું Friday સુધીમાં."}}]})"));
    // An address that is not the provider's, and no service beside the program.
    QVERIFY(desk.startSayvane({u"--service"_s, u"https://127.0.0.1:9"_s}));
    desk.pressShortcut();
    QVERIFY(Desk::eventually([&] { return server.requests().size() == 1; })); // the connection is warm
    desk.say(clip);
    desk.pressShortcut();
    QVERIFY(desk.logsNext("flow: idle"));

    const auto records = HistoryFile::decode(QJsonDocument(desk.history()).toJson());
    QVERIFY(records && records->size() == 1);
    const Dictation record = records->first();
    QCOMPARE(record.text, u"હું Friday સુધીમાં."_s);
    QCOMPARE(record.rawText, u"um હું એટલે કે Friday સુધીમાં"_s);
    QCOMPARE(record.providerRaw, QString::fromLatin1(provider));
    QTEST(record.transcriptionModel.value_or(QString()), "transcriptionModel");
    QTEST(record.chatModel.value_or(QString()), "chatModel");
    QVERIFY(record.transcribeMs && record.cleanupMs && record.timingSummary());
    QVERIFY(record.durationSeconds > 1);
    const double expected = record.durationSeconds / 3600 * perHour + ((3 * 1.5 + 250) * 0.15 + 3 * 1.4 * 0.60) / 1e6;
    QCOMPARE(HistoryStore::estimatedCost(record, Provider::sayvane), expected);

    QCOMPARE(proxy.targets(), QList<QByteArray>{host + ":443"});
    const auto &requests = server.requests();
    QCOMPARE(requests.size(), offered.isEmpty() ? 3 : 5);
    for (const TlsServer::Request &request : requests)
        QCOMPARE(request.header("Authorization"), "Bearer " + key);
    const QByteArray upload = requests.at(requests.size() - 2).body;
    QVERIFY(upload.contains("\r\n\r\nVocabulary that may appear: Sayvane, Groq, OpenAI\r\n"));
    const QByteArray wav = upload.sliced(upload.indexOf("audio/wav\r\n\r\n") + 13);
    QVERIFY(wav.startsWith("RIFF"));
    QCOMPARE(wav.lastIndexOf("\r\n--Sayvane-"), record.audioBytes);
    for (const QByteArray &secret : {key, QByteArray("Friday")})
        QVERIFY2(!desk.log().contains(secret), "a secret or dictated text is in the log");
    QVERIFY(desk.recordings().isEmpty());
}

QTEST_GUILESS_MAIN(OwnKeyDictationTest)
#include "OwnKeyDictationTest.moc"
