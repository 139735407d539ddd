#include "Exchange.h"
#include "ServiceProcess.h"
#include "WavFile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QTest>

#include <memory>
#include <vector>

#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

/// The program from outside: over TLS, with good and bad bytes.
class HttpsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void keepsItsSecretsPrivate();
    void isVerifiedByName();
    void answersItsAddresses();
    void refusesBadRequests_data();
    void refusesBadRequests();
    void survivesAnUploadThatStops();
    void refusesALongUploadBeforeItIsSent();
    void aFloodOfUploadsIsToldToWait();
    void idleConnectionsGiveWayToNewOnes();
    void understandsHumanSpeech();
    void theAllowanceSurvivesARestart();
    void isBackedUpWhileItServes();
    void takesANewCertificateWhileItServes();
    void endsInOrderAndAlone();

private:
    static QByteArray samplesOf(const QString &folder, const QStringList &clips);
    static double wordErrorRate(const QStringList &reference, const QStringList &heard);
    bool isWell();

    ServiceProcess m_service;
    QByteArray m_token;
};

void HttpsTest::initTestCase()
{
    QVERIFY(m_service.start());
    m_token = m_service.session();
    QVERIFY(m_token.startsWith("svs_"));
}

bool HttpsTest::isWell()
{
    return m_service.isRunning() && Exchange(m_service).ask(Exchange::request("GET /health", {})).status == 200;
}

void HttpsTest::keepsItsSecretsPrivate()
{
    const QByteArray token = m_service.session();
    QVERIFY(Exchange(m_service).ask(Exchange::request("GET /models", token)).status == 200);
    const QDir folder(m_service.folder());
    struct stat state
    {
    };
    QCOMPARE(::stat(QFile::encodeName(folder.path()).constData(), &state), 0);
    QCOMPARE(state.st_mode & 0777, 0700u);
    QByteArray everything = m_service.log();
    const QStringList names = folder.entryList(QDir::Files);
    for (const QString &name : names) {
        QCOMPARE(::stat(QFile::encodeName(folder.filePath(name)).constData(), &state), 0);
        QCOMPARE(state.st_mode & 0777, 0600u);
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QFile::ReadOnly));
        everything += file.readAll();
    }
    QVERIFY(names.contains(u"key.pem"_s));
    QVERIFY(everything.contains(QCryptographicHash::hash(token, QCryptographicHash::Sha256)));
    QVERIFY(!everything.contains(token.mid(4)));
    QVERIFY(!m_service.log().contains("maren"));
}

void HttpsTest::isVerifiedByName()
{
    QVERIFY(Exchange(m_service, u"127.0.0.1"_s).isOpen());
    QVERIFY(!Exchange(m_service, u"example.com"_s).isOpen());
}

void HttpsTest::answersItsAddresses()
{
    Exchange connection(m_service); // one for all: answers keep it open
    const auto models = connection.ask(Exchange::request("GET /models", m_token));
    QCOMPARE(models.body[u"data"_s].toArray().size(), 2);
    const auto me = connection.ask(Exchange::request("GET /v1/me", m_token));
    QCOMPARE(me.body[u"email"_s].toString(), u"maren@example.com"_s);
    QCOMPARE(me.body[u"remainingSeconds"_s].toInt(), 3600);
    const auto edited = connection.ask(
        Exchange::request("POST /v1/cleanup", m_token, "Content-Type: application/json\r\n",
                          R"({"text":"um ask maren scratch that ask tobin","vocabulary":"Tobin","language":"en"})"));
    QCOMPARE(edited.body[u"text"_s].toString(), u"Ask Tobin."_s);
    QVERIFY(connection.isOpen());
    const auto silent = connection.ask(Exchange::upload(m_token, Exchange::part("language", "en") +
                                                                     Exchange::part("prompt", "Sayvane") +
                                                                     Exchange::recording(WavFile::silence(2))));
    QCOMPARE(silent.status, 200);
    QCOMPARE(silent.body[u"text"_s].toString(), QString());
    QCOMPARE(silent.body[u"seconds"_s].toInt(), 2);
    QCOMPARE(silent.body[u"remainingSeconds"_s].toInt(), 3598);
}

void HttpsTest::refusesBadRequests_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("code");
    const auto row = [](const char *name, const QByteArray &bytes, int status, const char *code = "bad_request") {
        QTest::newRow(name) << bytes << status << QString::fromUtf8(code);
    };
    const QByteArray good = Exchange::recording(WavFile::silence(1));
    const auto form = [this](const QByteArray &body) { return Exchange::upload(m_token, body); };
    const auto json = [this](const QByteArray &body) {
        return Exchange::request("POST /v1/cleanup", m_token, "Content-Type: application/json\r\n", body);
    };

    row("wrong token", Exchange::upload("svs_" + QByteArray(43, 'A'), good), 401, "unauthorized");
    row("no token, cleanup", Exchange::request("POST /v1/cleanup", {}, {}, "{}"), 401, "unauthorized");
    row("unknown path, large body", Exchange::request("POST /etc/passwd", {}, {}, QByteArray(3'000'000, 'x')), 404,
        "not_found");
    row("wrong method", Exchange::request("GET /v1/transcribe", m_token), 405, "method_not_allowed");
    row("not HTTP", "hello\r\n\r\n", 400);
    row("long address", Exchange::request("GET /" + QByteArray(9000, 'a'), m_token), 414);
    row("many headers", Exchange::request("GET /models", m_token, QByteArray("X: y\r\n").repeated(20'000)), 400);

    row("not a recording", form(Exchange::recording("hello")), 400);
    row("recording cut off", form(Exchange::recording(WavFile::silence(1).chopped(2))), 400);
    row("recording too long", form(Exchange::recording(WavFile::silence(820))), 413, "payload_too_large");
    row("no end of form", form(Exchange::part("file", WavFile::silence(1))), 400);
    row("two files", form(Exchange::part("file", WavFile::silence(1)) + good), 400);
    row("part with a long header", form("--Sayvane-1\r\nX: " + QByteArray(100'000, '"') + "\r\n\r\nx\r\n" + good), 400);
    row("prompt not UTF-8", form(Exchange::part("prompt", "\xc3(") + good), 400);
    row("long prompt", form(Exchange::part("prompt", QByteArray(40'000, 'a')) + good), 400);
    row("not a form",
        Exchange::request("POST /v1/transcribe", m_token, "Content-Type: audio/wav\r\n", WavFile::silence(1)), 400);
    row("other language", form(Exchange::part("language", "gu") + good), 400, "unsupported_language");

    row("cut off", json("{\"text\": \"a"), 400);
    row("no text", json("{\"vocabulary\": \"a\"}"), 400);
    row("JSON not UTF-8", json("{\"text\": \"\xed\xa0\x80\"}"), 400);
    row("deep lists", json("{\"text\": \"a\", \"x\": " + QByteArray(500'000, '[') + QByteArray(500'000, ']') + "}"),
        400);
    row("long text", json("{\"text\": \"" + QByteArray(2'200'000, 'a') + "\"}"), 413, "payload_too_large");
}

void HttpsTest::refusesBadRequests()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, status);
    QFETCH(QString, code);
    Exchange connection(m_service);
    QVERIFY(connection.isOpen());
    const auto answer = connection.ask(bytes);
    QCOMPARE(answer.status, status);
    QCOMPARE(answer.code(), code);
    QVERIFY(answer.message().endsWith(QLatin1Char('.')));
    QVERIFY(isWell());
}

void HttpsTest::survivesAnUploadThatStops()
{
    const QByteArray whole = Exchange::upload(m_token, Exchange::recording(WavFile::silence(3)));
    for (const auto length : {whole.size() - 1, whole.size() / 2, whole.indexOf("RIFF"), qsizetype{30}, qsizetype{0}}) {
        Exchange connection(m_service);
        QVERIFY(connection.send(whole.first(length)));
    }
    QTcpSocket plain;
    plain.connectToHost(u"127.0.0.1"_s, m_service.port());
    plain.write("GET /health HTTP/1.1\r\n\r\n");
    plain.waitForDisconnected();
    QCOMPARE(plain.state(), QAbstractSocket::UnconnectedState);
    QVERIFY(isWell());
    const auto me = Exchange(m_service).ask(Exchange::request("GET /v1/me", m_token));
    QCOMPARE(me.body[u"usedTodaySeconds"_s].toInt(), 2); // nothing but the two seconds answered before
}

void HttpsTest::refusesALongUploadBeforeItIsSent()
{
    for (const char *path : {"POST /v1/transcribe", "POST /v1/cleanup"}) {
        Exchange connection(m_service);
        const auto answer = connection.ask(Exchange::request(
            path, m_token, "Content-Type: multipart/form-data; boundary=a\r\nContent-Length: 9000000000000\r\n"));
        QVERIFY(answer.status == 413 || answer.status == 400);
        QVERIFY(answer.head.contains("Connection: close"));
    }
}

void HttpsTest::aFloodOfUploadsIsToldToWait()
{
    const QByteArray whole = Exchange::upload(m_token, Exchange::recording(WavFile::silence(1)));
    std::vector<std::unique_ptr<Exchange>> unfinished;
    Exchange::Answer answer;
    for (int i = 0; i < 20 && answer.status != 429; ++i) {
        answer = Exchange(m_service).ask(whole);
        unfinished.push_back(std::make_unique<Exchange>(m_service));
        QVERIFY(unfinished.back()->send(whole.chopped(10)));
    }
    QTRY_VERIFY(Exchange(m_service).ask(whole).status == 429);
    answer = Exchange(m_service).ask(whole);
    QCOMPARE(answer.code(), u"rate_limited"_s);
    QVERIFY(answer.head.contains("Retry-After: "));
    QVERIFY(!answer.body.contains(u"remainingSeconds"_s));
    const QByteArray other = m_service.session(60, u"tobin@example.com"_s); // one account's flood is its own
    QCOMPARE(Exchange(m_service).ask(Exchange::upload(other, Exchange::recording(WavFile::silence(1)))).status, 200);
    QCOMPARE(Exchange(m_service).ask(Exchange::request("GET /models", m_token)).status, 200);
    unfinished.clear();
    QTRY_VERIFY(Exchange(m_service).ask(whole).status == 200);
}

void HttpsTest::idleConnectionsGiveWayToNewOnes()
{
    std::vector<std::unique_ptr<Exchange>> idle;
    for (int i = 0; i < 50; ++i) {
        idle.push_back(std::make_unique<Exchange>(m_service));
        QCOMPARE(idle.back()->ask(Exchange::request("GET /health", {})).status, 200);
    }
    QCOMPARE(idle.back()->ask(Exchange::request("GET /models", m_token)).status, 200);
}

QByteArray HttpsTest::samplesOf(const QString &folder, const QStringList &clips)
{
    QByteArray samples;
    for (const QString &clip : clips) {
        QFile file(folder + u'/' + clip + u".wav"_s);
        if (file.open(QFile::ReadOnly))
            samples += file.readAll().mid(44);
    }
    return samples;
}

double HttpsTest::wordErrorRate(const QStringList &reference, const QStringList &heard)
{
    std::vector<int> row(static_cast<size_t>(heard.size()) + 1);
    for (size_t j = 0; j < row.size(); ++j)
        row[j] = static_cast<int>(j);
    for (const QString &word : reference) {
        int diagonal = row[0]++;
        for (size_t j = 1; j < row.size(); ++j) {
            const int substituted = diagonal + (word != heard[static_cast<qsizetype>(j) - 1]);
            diagonal = row[j];
            row[j] = std::min({substituted, row[j] + 1, row[j - 1] + 1});
        }
    }
    return static_cast<double>(row.back()) / static_cast<double>(reference.size());
}

void HttpsTest::understandsHumanSpeech()
{
    const QString folder = QString::fromUtf8(SPEECH_SAMPLES);
    QFile transcription(folder + u"/transcription"_s);
    QVERIFY2(transcription.open(QFile::ReadOnly), "needs the package pocketsphinx-testdata");
    static const QRegularExpression line(u"<s> (.*) </s> \\((.*)\\)"_s);
    QStringList words;
    QStringList clips;
    auto lines = line.globalMatch(QString::fromUtf8(transcription.readAll()));
    while (lines.hasNext()) {
        const auto match = lines.next();
        words += match.captured(1).split(QLatin1Char(' '));
        clips += match.captured(2);
    }
    QCOMPARE(clips.size(), 5);

    const WavFile speech{.samples = samplesOf(folder, clips), .declaredLength = 0xffffffff};
    const auto answer = Exchange(m_service).ask(Exchange::upload(
        m_token, Exchange::part("prompt", "AMIABLE, Cold-Hearted") + Exchange::recording(speech.bytes())));
    QCOMPARE(answer.status, 200);
    QCOMPARE(answer.body[u"seconds"_s].toInt(), 25);
    const QString text = answer.body[u"text"_s].toString();
    QVERIFY2(text.contains(u"AMIABLE"_s) && text.contains(u"Cold-Hearted"_s), qPrintable(text));
    QVERIFY(text.at(0).isUpper() && text.endsWith(QLatin1Char('.')));
    static const QRegularExpression separators(u"[^a-z']+"_s);
    const double rate = wordErrorRate(words, text.toLower().split(separators, Qt::SkipEmptyParts));
    QVERIFY2(rate < 0.45, qPrintable(u"%1: %2"_s.arg(rate).arg(text)));
    QVERIFY(!m_service.log().contains("man"));
}

void HttpsTest::theAllowanceSurvivesARestart()
{
    ServiceProcess service;
    QVERIFY(service.start({u"--decoders"_s, u"1"_s}));
    const QByteArray token = service.session(1);
    const QByteArray upload = Exchange::upload(token, Exchange::recording(WavFile::silence(35)));
    QCOMPARE(Exchange(service).ask(upload).body[u"remainingSeconds"_s].toInt(), 25);
    const QSslCertificate certificate = service.certificate();
    QCOMPARE(service.end(), 0);
    QVERIFY(service.start({u"--decoders=1"_s}));
    QCOMPARE(service.certificate(), certificate);
    QCOMPARE(Exchange(service).ask(upload).body[u"remainingSeconds"_s].toInt(-1), 0);
    const auto refused = Exchange(service).ask(upload);
    QCOMPARE(refused.status, 429);
    QCOMPARE(refused.code(), u"quota_exceeded"_s);
    QCOMPARE(refused.body[u"remainingSeconds"_s].toInt(-1), 0);
}

void HttpsTest::isBackedUpWhileItServes()
{
    ServiceProcess restored;
    const QString copy = restored.folder() + u"/service.sqlite"_s;
    const QStringList backup{u"backup"_s, u"--data"_s, m_service.folder(), u"--to"_s, copy};
    QCOMPARE(m_service.run(backup).exitCode, 69); // there is no such folder
    QVERIFY(QDir().mkpath(restored.folder()));
    QCOMPARE(m_service.run(backup).exitCode, 0);
    QCOMPARE(m_service.run(backup).exitCode, 0); // replaces the older one
    QCOMPARE(QFile::permissions(copy) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    QVERIFY(restored.start({u"--decoders=1"_s}));
    const QByteArray me = Exchange::request("GET /v1/me", m_token);
    QCOMPARE(Exchange(restored).ask(me).body, Exchange(m_service).ask(me).body);
}

void HttpsTest::takesANewCertificateWhileItServes()
{
    Exchange old(m_service);
    QCOMPARE(old.ask(Exchange::request("GET /health", {})).status, 200);
    const QSslCertificate before = m_service.certificate();
    QVERIFY(QFile::remove(m_service.folder() + u"/certificate.pem"_s));
    m_service.hangUp();
    QTRY_VERIFY(!m_service.certificate().isNull());
    QVERIFY(m_service.certificate() != before);
    QTRY_VERIFY(Exchange(m_service).isOpen()); // trusts the new one alone
    QCOMPARE(old.ask(Exchange::request("GET /health", {})).status, 200);
}

void HttpsTest::endsInOrderAndAlone()
{
    const auto second = m_service.run({u"--port"_s, u"0"_s, u"--data"_s, m_service.folder()});
    QCOMPARE(second.exitCode, 69);
    QVERIFY(second.error.contains("another server uses the data folder"));
    const auto wrong = m_service.run({u"--loud"_s});
    QCOMPARE(wrong.exitCode, 64);
    QVERIFY(wrong.error.contains("unknown option --loud") && wrong.out.isEmpty());
    QVERIFY(m_service.run({u"--help"_s}).out.contains(m_service.run({u"backup"_s, u"-h"_s}).out));
    QVERIFY(m_service.run({u"--version"_s}).out.startsWith("sayvane-service "));

    Exchange idle(m_service);
    QCOMPARE(idle.ask(Exchange::request("GET /health", {})).status, 200);
    Exchange busy(m_service);
    QVERIFY(busy.send(Exchange::upload(m_token, Exchange::recording(WavFile::silence(1))).chopped(5)));
    busy.socket().abort();
    QCOMPARE(m_service.end(), 0);
}

QTEST_GUILESS_MAIN(HttpsTest)
#include "HttpsTest.moc"
