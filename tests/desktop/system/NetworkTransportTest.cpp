#include "machine/network/NetworkTransport.h"
#include "machine/network/NetworkChanges.h"
#include "support/server/TlsServer.h"

#include <QCoroTask>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <optional>
#include <set>
#include <thread>
#include <tuple>

#include <net/if.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

using Result = std::expected<HttpResponse, TransportError>;
using Kind = TransportError::Kind;

namespace {

std::chrono::seconds timeAsleep{0}; // which the kernel's clocks then tell

} // namespace

/// The C library's function of this name, for a computer that sleeps when a test says so.
extern "C" int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const int result = int(syscall(SYS_clock_gettime, clock, time));
    if (clock == CLOCK_BOOTTIME)
        time->tv_sec += timeAsleep.count();
    return result;
}

namespace {

/// Gives another name of the loopback an address, in network byte order, or takes it away again.
void setAddress(const char *interface, in_addr_t address)
{
    const int control = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request{};
    std::strcpy(request.ifr_name, interface);
    reinterpret_cast<sockaddr_in &>(request.ifr_addr) = {AF_INET, 0, {address}, {}};
    if (address != 0)
        ioctl(control, SIOCSIFADDR, &request);
    else
        ioctl(control, SIOCSIFFLAGS, &request); // not up: the name goes
    close(control);
}

/// Our end of each connection to the server.
QList<int> socketsTo(const TlsServer &server)
{
    QList<int> sockets;
    for (int each = 3; each < 256; ++each) {
        sockaddr_in peer{};
        socklen_t size = sizeof peer;
        if (getpeername(each, reinterpret_cast<sockaddr *>(&peer), &size) == 0 && peer.sin_family == AF_INET &&
            ntohs(peer.sin_port) == server.serverPort())
            sockets += each;
    }
    return sockets;
}

int option(int socket, int level, int name)
{
    int value = -1;
    socklen_t size = sizeof value;
    getsockopt(socket, level, name, &value, &size);
    return value;
}

/// Has the connections give up sooner than they would; whether they would in about ten seconds.
bool giveUpSooner(const TlsServer &server)
{
    bool is = true;
    for (const int socket : socketsTo(server)) {
        is = is && option(socket, IPPROTO_TCP, TCP_USER_TIMEOUT) == 10000 &&
             option(socket, SOL_SOCKET, SO_KEEPALIVE) == 1 &&
             option(socket, IPPROTO_TCP, TCP_KEEPIDLE) + option(socket, IPPROTO_TCP, TCP_KEEPINTVL) == 10;
        for (const auto &[name, value] :
             {std::pair(TCP_USER_TIMEOUT, 200), std::pair(TCP_KEEPIDLE, 1), std::pair(TCP_KEEPINTVL, 1)})
            setsockopt(socket, IPPROTO_TCP, name, &value, sizeof value);
    }
    return is;
}

QCoro::Task<> keep(NetworkTransport &transport, HttpRequest request, std::stop_token stop, QList<Result> &results)
{
    auto result = co_await transport.send(request, stop);
    results += result;
}

/// Tries a second time whatever came of the first, as a client with a retry would.
QCoro::Task<> keepBoth(NetworkTransport &transport, HttpRequest request, QList<Result> &results)
{
    auto first = co_await transport.send(request, {});
    results += first;
    auto second = co_await transport.send(request, {});
    results += second;
}

} // namespace

class NetworkTransportTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    std::optional<TlsServer> m_server; // trusted
    std::optional<NetworkTransport> m_transport;

    static HttpRequest get(const QUrl &url)
    {
        HttpRequest request;
        request.url = url;
        request.timeout = 20s;
        return request;
    }

    static HttpRequest post(const QUrl &url, const QByteArray &body)
    {
        HttpRequest request = get(url);
        request.method = "POST";
        request.headers = {{"Authorization", "Bearer secret"}, {"Content-Type", "application/json"}};
        request.body = body;
        return request;
    }

    QString write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(m_folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("The test cannot write its file.");
        return file.fileName();
    }

    void trust(const TestCertificate &authority) const
    {
        qputenv("SSL_CERT_FILE", write(u"authority.pem"_s, authority.certificate).toLocal8Bit());
    }

    static Result exchange(NetworkTransport &transport, const HttpRequest &request, std::stop_token stop = {})
    {
        return QCoro::waitFor(transport.send(request, stop));
    }

    Result exchange(const HttpRequest &request, std::stop_token stop = {})
    {
        return exchange(*m_transport, request, stop);
    }

    static Kind kindOf(const Result &result) { return result ? Kind(-1) : result.error().kind; }

private Q_SLOTS:
    void init()
    {
        for (const char *name : {"SSL_CERT_FILE", "SSL_CERT_DIR", "http_proxy", "https_proxy", "HTTPS_PROXY",
                                 "all_proxy", "ALL_PROXY", "no_proxy", "NO_PROXY"})
            qunsetenv(name);
        m_server.emplace();
        trust(m_server->authority());
        m_transport.emplace("Sayvane/0.1");
    }

    void aRequestHoldsWhatWasGivenAndNothingThatTellsOnTheUser()
    {
        m_server->answer(TlsServer::Answer::of(200, "{}", "application/json", {{"Set-Cookie", "id=1; Path=/"}}));
        QVERIFY(exchange(get(m_server->url(u"/first"_s))));
        QVERIFY(exchange(post(m_server->url(u"/second"_s), "{\"a\":1}")));

        const TlsServer::Request request = m_server->requests().value(1);
        QCOMPARE(request.method, "POST");
        QCOMPARE(request.target, "/second");
        QCOMPARE(request.body, "{\"a\":1}");
        QCOMPARE(request.header("Authorization"), "Bearer secret");
        QCOMPARE(request.header("User-Agent"), "Sayvane/0.1");
        std::set<QByteArray> names;
        for (const auto &[name, value] : request.headers)
            names.insert(name.toLower());
        const std::set<QByteArray> expected{"host",           "authorization",   "content-type",
                                            "content-length", "accept-encoding", "user-agent"};
        QVERIFY2(names == expected, request.bytes);
    }

    void everyStatusIsAnAnswer()
    {
        for (const auto &[status, header, value] : {std::tuple(429, "Retry-After", "7"),
                                                    {302, "Location", "/elsewhere"},
                                                    {401, "WWW-Authenticate", "Basic realm=\"x\""},
                                                    {407, "X-Other", "1"}}) {
            m_server->answer(TlsServer::Answer::of(status, "{\"error\":{}}", "application/json", {{header, value}}));
            const Result result = exchange(post(m_server->url(u"/"_s), "body"));
            QVERIFY2(result, result ? "" : qPrintable(result.error().message));
            QCOMPARE(result->status, status);
            QCOMPARE(result->body, "{\"error\":{}}");
            QCOMPARE(result->header(header), QString::fromLatin1(value));
        }
        QCOMPARE(m_server->requests().size(), 4);
    }

    void anAnswerCutShortIsAnError()
    {
        const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n";
        const QByteArray chunked = head + "Transfer-Encoding: chunked\r\n\r\n";
        for (const QByteArray &bytes :
             {QByteArray(), QByteArray("HTTP/1.1 2"), head, head + "Content-Length: 17\r\n\r\n{\"text\":\"halves\"",
              chunked + "11\r\n{\"text\":\"half", chunked + "2\r\n{}\r\n"}) {
            for (const auto security : {TlsServer::Security::tls, TlsServer::Security::plain}) {
                TlsServer server(security);
                trust(server.authority());
                for (const bool isKept : {false, bytes.contains('\n')}) {
                    NetworkTransport transport("Sayvane/0.1");
                    if (isKept)
                        QVERIFY(exchange(transport, get(server.url(u"/"_s))));
                    const qsizetype before = server.requests().size();
                    for (int i = 0; i < 5; ++i)
                        server.answer({.bytes = bytes, .afterwards = TlsServer::Afterwards::close});
                    const Result result = exchange(transport, post(server.url(u"/"_s), "body"));
                    server.forgetAnswers();
                    QVERIFY2(!result, bytes);
                    QCOMPARE(result.error().kind, Kind::other);
                    QVERIFY2(result.error().message.contains(u"before its whole answer"_s),
                             qPrintable(result.error().message));
                    QCOMPARE(server.requests().size(), before + 1); // the server may have carried it out
                }
            }
        }
    }

    void aBodyThatEndsWithTheConnectionIsWhole()
    {
        m_server->answer(
            {.bytes = "HTTP/1.0 200 OK\r\n\r\n<html>plain</html>", .afterwards = TlsServer::Afterwards::close});
        const Result result = exchange(get(m_server->url(u"/"_s)));
        QVERIFY(result);
        QCOMPARE(result->body, "<html>plain</html>");
    }

    void aWarmUpSavesTheHandshakeOfTheUpload()
    {
        QVERIFY(exchange(get(m_server->url(u"/models"_s))));
        const QByteArray recording(3'000'000, '\x7f');
        QVERIFY(exchange(post(m_server->url(u"/transcribe"_s), recording)));
        QCOMPARE(m_server->requests().value(1).body, recording);
        QCOMPARE(m_server->connections(), 1);
        QCOMPARE(m_server->handshakes(), 1);
        // One that the server has closed meanwhile is opened anew.
        m_server->closeAllConnections();
        QTRY_COMPARE(m_server->openConnections(), 0);
        QVERIFY(exchange(post(m_server->url(u"/transcribe"_s), "recording")));
        QCOMPARE(m_server->requests().size(), 3);
        QCOMPARE(m_server->connections(), 2);
    }

    void aConnectionThatLeadsNowhereIsGivenUp()
    {
        const auto tls = TlsServer::Security::tls;
        const auto plain = TlsServer::Security::plain;
        for (const auto &[moment, security, outcome] :
             {std::tuple(u"kept"_s, tls, u"200"_s),
              {u"kept"_s, plain, u"200"_s},
              {u"uploading"_s, tls, u"200"_s},
              {u"uploading"_s, plain, u"200"_s},
              {u"uploading"_s, tls, u"127.0.0.1 did not answer in time."_s}, // nor then
              {u"waiting"_s, tls, u"200"_s},
              {u"answering"_s, tls, u"127.0.0.1 cannot be reached. Check the internet connection."_s}}) {
            bool isLost = false;
            TlsServer server(security);
            trust(server.authority());
            NetworkTransport transport("Sayvane/0.1");
            HttpRequest request = post(server.url(u"/"_s), QByteArray(3'000'000, '\x7f'));
            const auto lose = [&server, &isLost] {
                if (!std::exchange(isLost, true)) {
                    server.loseAllConnections();
                    QVERIFY(giveUpSooner(server));
                }
            };
            if (moment == u"kept") {
                QVERIFY(exchange(transport, get(server.url(u"/"_s))));
                lose();
            } else if (moment == u"uploading") {
                connect(&server, &TlsServer::bytesArrived, &server, lose);
            } else {
                const bool answers = moment == u"answering";
                server.answer({.bytes = "HTTP/1.1 200 OK\r\n", .delay = answers ? 0s : 30s});
                // Once the beginning of the answer is acknowledged, nothing more comes of it.
                connect(&server, &TlsServer::requestArrived, &server,
                        [&server, lose, answers] { QTimer::singleShot(answers ? 300ms : 0ms, &server, lose); });
            }
            if (outcome.contains(u"in time")) { // the limits are those of the whole
                server.answer({.delay = 30s});
                request.resourceTimeout = 3s;
            }
            const Result result = exchange(transport, request);
            QCOMPARE(result ? QString::number(result->status) : result.error().message, outcome);
            QCOMPARE(server.connections(), moment == u"answering" ? 1 : 2);
            QCOMPARE(server.requests().size(), moment == u"kept" || moment == u"waiting" ? 2 : 1);
        }
    }

    void aSleepEndsTheLifeOfConnections()
    {
        TlsServer server(TlsServer::Security::plain);
        NetworkTransport transport("Sayvane/0.1");
        QList<int> connections;
        for (const auto sleep : {0s, 0s, 60s, 0s}) {
            timeAsleep += sleep;
            QVERIFY(exchange(transport, get(server.url(u"/"_s))));
            connections += server.connections();
        }
        QCOMPARE(connections, (QList{1, 1, 2, 2}));
    }

    void anAddressThatComesOrGoesIsAChangeOfTheNetwork()
    {
        // In a network of its own, which nobody but a child without threads may make.
        const pid_t child = fork();
        if (child == 0) {
            if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0)
                _exit(100);
            const in_addr_t one = htonl(0x0a090001);
            NetworkChanges changes;
            int wrong = changes.happened() ? 1 : 0;
            setAddress("lo:1", one);
            wrong |= changes.happened() && !changes.happened() ? 0 : 2;
            wrong |= NetworkChanges().happened() ? 4 : 0; // it was there from the start
            setAddress("lo:2", htonl(0x7f000002));        // leads nowhere else
            wrong |= changes.happened() ? 8 : 0;
            setAddress("lo:1", 0);
            setAddress("lo:1", one); // as in another house whose router gives out the same
            wrong |= changes.happened() ? 0 : 16;
            for (int i = 0; i < 5000; ++i) // more than the kernel keeps
                setAddress("lo:1", htonl(0x0a090002 + (i & 1)));
            wrong |= changes.happened() && !changes.happened() ? 0 : 32;
            setAddress("lo:1", 0);
            wrong |= changes.happened() ? 0 : 64;
            _exit(wrong);
        }
        int status = 0;
        waitpid(child, &status, 0);
        QVERIFY(WIFEXITED(status));
        if (WEXITSTATUS(status) == 100)
            QSKIP("No network of its own can be made here.");
        QCOMPARE(WEXITSTATUS(status), 0);
    }

    void anAnswerLargerThanItCanBeIsNotHeld()
    {
        const QString unreadable = u"The answer could not be read."_s;
        const QByteArray ok = "HTTP/1.1 200 OK\r\n";
        const QByteArray huge(60'000'000, 'x');
        const QByteArray packed = qCompress(huge).sliced(4); // what comes first is Qt's own
        const QByteArray refused = "HTTP/1.1 429 Slow\r\nContent-Length: 60000000\r\nRetry-After: 7\r\n\r\n";
        for (const auto &[bytes, expected] :
             {std::pair(ok + "Content-Length: 9000000000\r\n\r\n" + QByteArray(2000, 'x'), unreadable),
              {ok + "\r\n" + huge, unreadable},
              {ok + "Content-Encoding: deflate\r\nContent-Length: " + QByteArray::number(packed.size()) + "\r\n\r\n" +
                   packed,
               unreadable},
              {ok + QByteArray("X: " + QByteArray(997, 'x') + "\r\n").repeated(400), unreadable},
              {refused + huge, u"429 after 7: 0 bytes"_s},
              {ok + "Retry-After: 1\r\nContent-Length: 1000\r\n\r\n" + huge.first(1000),
               u"200 after 1: 1000 bytes"_s}}) {
            TlsServer server(TlsServer::Security::plain);
            NetworkTransport transport("Sayvane/0.1");
            server.answer({.bytes = bytes, .pieceSize = 1024 * 1024});
            HttpRequest request = get(server.url(u"/"_s));
            request.largestAnswer = 1000;
            const Result result = exchange(transport, request);
            const QString outcome = result ? u"%1 after %2: %3 bytes"_s.arg(result->status)
                                                 .arg(result->header("Retry-After").value_or(QString()),
                                                      QString::number(result->body.size()))
                                           : result.error().message;
            QCOMPARE(outcome, expected);
            QVERIFY(result || result.error().kind == Kind::tooLarge);
        }
    }

    void aServerThatCannotBeTrustedGetsNoRequest()
    {
        const TestCertificate good = TestCertificate::authority();
        const QDateTime now = QDateTime::currentDateTimeUtc();
        for (const auto &[authority, certificate, reason] :
             {std::tuple(good, good.issue({"127.0.0.1", now.addDays(-9), now.addDays(-1)}), u"has expired"_s),
              {good, good.issue({.name = "example.org"}), u"another address"_s},
              {good, TestCertificate::authority("Other").issue({}), u"authority"_s},
              {TestCertificate(), good.issue({}), u"SSL_CERT_FILE"_s}}) {
            TlsServer server(certificate);
            trust(authority);
            NetworkTransport transport("Sayvane/0.1");
            const Result result = exchange(transport, post(server.url(u"/"_s), "secret"));
            QCOMPARE(kindOf(result), Kind::insecure);
            QVERIFY2(result.error().message.contains(reason), qPrintable(result.error().message));
            QCOMPARE(server.bytesReceived(), 0);
        }
    }

    void aFolderOfCertificatesIsTrusted()
    {
        TlsServer server;
        QVERIFY(QDir(m_folder.path()).mkpath(u"authorities"_s));
        write(u"authorities/"_s + QString::fromLatin1(server.authority().hashedName()), server.authority().certificate);
        qunsetenv("SSL_CERT_FILE");
        qputenv("SSL_CERT_DIR", "/nonexistent:" + m_folder.filePath(u"authorities"_s).toLocal8Bit());
        NetworkTransport transport("Sayvane/0.1");
        QVERIFY(exchange(transport, get(server.url(u"/"_s))));
    }

    void aServerWithoutTlsIsInsecure()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        connect(&server, &QTcpServer::newConnection, &server,
                [&server] { server.nextPendingConnection()->write("HTTP/1.1 400 Bad Request\r\n\r\n"); });
        NetworkTransport transport("Sayvane/0.1");
        const Result result = exchange(transport, get(QUrl(u"https://127.0.0.1:%1/"_s.arg(server.serverPort()))));
        QCOMPARE(kindOf(result), Kind::insecure);
    }

    void aServerThatHangsUpDuringAnUploadIsAnError()
    {
        QList<Result> results;
        const HttpRequest request = post(m_server->url(u"/"_s), QByteArray(18 * 1024 * 1024, 'x'));
        connect(&*m_server, &TlsServer::bytesArrived, &*m_server, &TlsServer::closeAllConnections,
                Qt::QueuedConnection);
        const QCoro::Task<> task = keep(*m_transport, request, {}, results);
        QTRY_COMPARE(results.size(), 1);
        QCOMPARE(kindOf(results.first()), Kind::other);
        QCOMPARE(m_server->connections(), 1);
    }

    void silenceEndsARequestAndSlownessDoesNot()
    {
        HttpRequest request = get(m_server->url(u"/"_s));
        request.timeout = 300ms;
        const QByteArray answer = TlsServer::Answer::json(200, QByteArray(1000, '1')).bytes;

        m_server->answer({.bytes = answer, .pieceSize = 120, .pause = 60ms});
        QVERIFY(exchange(request));

        m_server->answer({.bytes = answer, .delay = 30s});
        QCOMPARE(kindOf(exchange(request)), Kind::timedOut);

        m_server->answer({.bytes = answer, .cutAfter = answer.size() - 3});
        QCOMPARE(kindOf(exchange(request)), Kind::timedOut);
        QTRY_COMPARE(m_server->openConnections(), 0); // given up, not left behind

        request.resourceTimeout = 300ms; // the whole has a limit, too
        m_server->answer({.bytes = answer, .pieceSize = 1, .pause = 20ms});
        QCOMPARE(kindOf(exchange(request)), Kind::timedOut);
    }

    void nobodyThereOrMuteIsTold()
    {
        QTcpServer mute;
        QVERIFY(mute.listen(QHostAddress::LocalHost));
        NetworkTransport transport("Sayvane/0.1");
        HttpRequest request = get(QUrl(u"https://127.0.0.1:%1/"_s.arg(mute.serverPort())));
        request.timeout = 200ms;
        QCOMPARE(kindOf(exchange(transport, request)), Kind::timedOut); // it never shakes hands
        mute.close();
        QCOMPARE(kindOf(exchange(transport, request)), Kind::offline);
    }

    void whatIsNoWebRequestIsRefused()
    {
        NetworkTransport transport("Sayvane/0.1");
        HttpRequest request = get(QUrl(u"file:///etc/hostname"_s));
        QCOMPARE(kindOf(exchange(transport, request)), Kind::other);
        request = get(QUrl(u"http://127.0.0.1:9/"_s));
        request.headers = {{"Authorization", "x\r\nCookie: a=b"}}; // two headers in one
        QCOMPARE(kindOf(exchange(transport, request)), Kind::other);
    }

    void aStopRequestCancels()
    {
        m_server->answer({.delay = 30s});
        std::stop_source stop;
        QList<Result> results;
        const QCoro::Task<> task = keep(*m_transport, get(m_server->url(u"/"_s)), stop.get_token(), results);
        QTRY_COMPARE(m_server->requests().size(), 1);
        std::jthread([&stop] { stop.request_stop(); }).join();
        QTRY_COMPARE(results.size(), 1);
        QCOMPARE(kindOf(results.first()), Kind::cancelled);
        QTRY_COMPARE(m_server->openConnections(), 0);

        QCOMPARE(kindOf(exchange(get(m_server->url(u"/"_s)), stop.get_token())), Kind::cancelled);
        QCOMPARE(m_server->requests().size(), 1);
    }

    void theEndOfTheTransportCancelsWhatIsUnderWay()
    {
        m_server->answer({.delay = 30s});
        m_server->answer({.delay = 30s});
        QList<Result> results;
        const QCoro::Task<> one = keep(*m_transport, get(m_server->url(u"/"_s)), {}, results);
        const QCoro::Task<> two = keepBoth(*m_transport, get(m_server->url(u"/"_s)), results);
        QTRY_COMPARE(m_server->requests().size(), 2);
        m_transport.reset();
        QCOMPARE(results.size(), 3);
        for (const Result &result : std::as_const(results))
            QCOMPARE(kindOf(result), Kind::cancelled);
    }

    void theWaiterMayDestroyTheTransport()
    {
        int statuses = 0;
        auto sent = m_transport->send(get(m_server->url(u"/"_s)), {});
        sent.then([&](const Result &result) {
            statuses += result ? result->status : 0;
            m_transport.reset();
        });
        QTRY_COMPARE(statuses, 200);
        QVERIFY(!m_transport);
    }

    void aProxyOfTheEnvironmentIsUsed()
    {
        TlsServer proxy(TlsServer::Security::plain);
        TlsServer direct(TlsServer::Security::plain);
        const QByteArray address = "http://127.0.0.1:" + QByteArray::number(proxy.serverPort());
        qputenv("http_proxy", address);
        qputenv("HTTPS_PROXY", address);
        qputenv("no_proxy", "127.0.0.1");
        NetworkTransport transport("Sayvane/0.1");
        QVERIFY(exchange(transport, get(QUrl(u"http://plain.invalid/x"_s))));
        QCOMPARE(proxy.requests().value(0).target, "http://plain.invalid/x");

        proxy.answer(TlsServer::Answer::html(502, "no"));
        QCOMPARE(kindOf(exchange(transport, get(QUrl(u"https://secure.invalid/x"_s)))), Kind::offline);
        QCOMPARE(proxy.requests().value(1).method, "CONNECT");
        QCOMPARE(proxy.requests().value(1).target, "secure.invalid:443");

        QVERIFY(exchange(transport, get(direct.url(u"/"_s))));
        QCOMPARE(direct.requests().size(), 1);
    }
};

QTEST_GUILESS_MAIN(NetworkTransportTest)
#include "NetworkTransportTest.moc"
