#include "LoopbackService.h"

#include "service/http/ClientNetwork.h"

#include <QCryptographicHash>
#include <QFile>
#include <QJsonArray>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <future>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {
const QString maren = u"maren@example.com"_s;
}

/// Signing in with a code, over TLS: codes, limits, sessions, restarts.
class SignInTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_service = std::make_unique<LoopbackService>(); }

    void signsInListsAndSignsOut();
    void aCodeIsGoodForOneSignIn_data();
    void aCodeIsGoodForOneSignIn();
    void aCodeRedeemedAtOnceByManyOpensOneSession();
    void limitsLastAndEnd();
    void strangersKeepNobodyOut();
    void codesAreMailed();
    void aRestartForgetsNothing();
    void anOlderDatabaseIsBroughtUpToDate();
    void closedSignUpsLetOnlyAccountsIn();
    void refusesBadRequests_data();
    void refusesBadRequests();
    void networksAreAsCoarseAsTheyMust();

private:
    Exchange::Answer verify(const QString &code, const QString &email = maren)
    {
        return m_service->post("/v1/auth/verify", {{u"email"_s, email}, {u"code"_s, code}, {u"device"_s, u"Desk"_s}});
    }
    static QString otherThan(const QString &code) { return code == u"000000"_s ? u"000001"_s : u"000000"_s; }
    QByteArray stored(const char *name) const
    {
        QByteArray bytes;
        for (const char *suffix : {"", "-wal"}) {
            QFile file(QString::fromStdString(m_service->path(name).string()) + QLatin1String(suffix));
            bytes += file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
        }
        return bytes;
    }

    std::unique_ptr<LoopbackService> m_service;
};

void SignInTest::signsInListsAndSignsOut()
{
    const auto asked = m_service->post(
        "/v1/auth/request-code", {{u"email"_s, u" Maren@Example.COM\n"_s}, {u"device"_s, u"\u001b[2J D\u202eesk "_s}});
    QCOMPARE(asked.body[u"expiresInSeconds"_s].toInt(), 600);
    QCOMPARE(m_service->lastDevice(), u"[2J Desk"_s);
    const auto signedIn = verify(m_service->code(maren));
    QCOMPARE(signedIn.status, 200);
    const QByteArray desk = signedIn.body[u"token"_s].toString().toUtf8();
    QVERIFY(desk.startsWith("svs_") && desk.size() >= 47);
    const QJsonObject user{{u"email"_s, maren}, {u"plan"_s, u"self-hosted"_s}, {u"dailyMinutes"_s, 60}};
    QCOMPARE(signedIn.body[u"user"_s].toObject(), user);

    m_service->advance(90s);
    const QByteArray laptop = m_service->signIn(maren, u"Laptop"_s);
    const QByteArray stranger = m_service->signIn(u"tobin@example.com"_s, u"Other"_s);
    m_service->advance(90s);
    const auto list = m_service->get("/v1/auth/sessions", desk).body[u"sessions"_s].toArray();
    QCOMPARE(list.size(), 2); // the last used one first
    const QString deskId = list[0][u"id"_s].toString();
    QCOMPARE(list[0].toObject(), (QJsonObject{{u"id"_s, deskId},
                                              {u"device"_s, u"Desk"_s},
                                              {u"createdAt"_s, u"2026-02-28T12:00:00Z"_s},
                                              {u"lastUsedAt"_s, u"2026-02-28T12:03:00Z"_s},
                                              {u"current"_s, true}}));
    QCOMPARE(list[1][u"device"_s].toString(), u"Laptop"_s);
    QCOMPARE(list[1][u"current"_s].toBool(true), false);

    QCOMPARE(m_service->post("/v1/auth/sessions/revoke", {{u"id"_s, deskId}}, stranger).status, 404);
    QCOMPARE(m_service->get("/v1/me", desk).status, 200);
    QCOMPARE(m_service->post("/v1/auth/sessions/revoke", {{u"id"_s, deskId}}, laptop).status, 200);
    QCOMPARE(m_service->get("/v1/me", desk).code(), u"unauthorized"_s);
    QCOMPARE(m_service->post("/v1/auth/sessions/revoke", {{u"id"_s, deskId}}, laptop).code(), u"not_found"_s);
    QCOMPARE(m_service->post("/v1/auth/logout", {}, laptop).status, 200);
    QCOMPARE(m_service->get("/v1/me", laptop).status, 401);
    QCOMPARE(m_service->get("/v1/me", stranger).body[u"email"_s].toString(), u"tobin@example.com"_s);
}

void SignInTest::aCodeIsGoodForOneSignIn_data()
{
    QTest::addColumn<int>("wrongTries");
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QString>("then");
    QTest::addColumn<QString>("code");
    QTest::newRow("in the last second") << 4 << 599 << ""
                                        << "";
    QTest::newRow("too late") << 0 << 600 << ""
                              << "code_expired";
    QTest::newRow("five wrong ones before") << 5 << 0 << ""
                                            << "code_expired";
    QTest::newRow("another code was asked for") << 0 << 0 << "again"
                                                << "invalid_code";
    QTest::newRow("someone else's") << 0 << 0 << "other"
                                    << "code_expired";
    QTest::newRow("used already") << 0 << 0 << "used"
                                  << "code_expired";
}

void SignInTest::aCodeIsGoodForOneSignIn()
{
    QFETCH(int, wrongTries);
    QFETCH(int, seconds);
    QFETCH(QString, then);
    QFETCH(QString, code);
    QString digits = m_service->code(maren);
    for (int i = 0; i < wrongTries; ++i)
        QCOMPARE(verify(otherThan(digits)).code(), u"invalid_code"_s);
    m_service->advance(std::chrono::seconds(seconds));
    if (then == u"used"_s)
        QCOMPARE(verify(digits).status, 200);
    for (QString fresh = digits; then == u"again"_s && fresh == digits;)
        fresh = m_service->code(maren);
    const auto answer = verify(digits, then == u"other"_s ? u"tobin@example.com"_s : maren);
    QCOMPARE(answer.code(), code);
    QCOMPARE(answer.status, code.isEmpty() ? 200 : 400);
}

void SignInTest::aCodeRedeemedAtOnceByManyOpensOneSession()
{
    const QString digits = m_service->code(maren);
    std::atomic<int> sessions = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 5; ++i)
        threads.emplace_back([&] { sessions += verify(digits).status == 200 ? 1 : 0; });
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(sessions.load(), 1);
}

void SignInTest::limitsLastAndEnd()
{
    const QJsonObject request{{u"email"_s, maren}};
    for (int i = 0; i < 5; ++i, m_service->advance(30s))
        QVERIFY(!m_service->code(maren).isEmpty());
    m_service->restart();
    const auto refused = m_service->post("/v1/auth/request-code", request);
    QCOMPARE(refused.status, 429);
    QCOMPARE(refused.code(), u"rate_limited"_s);
    QVERIFY2(refused.head.contains("\r\nRetry-After: 750\r\n"), refused.head);
    m_service->advance(749s);
    QCOMPARE(m_service->post("/v1/auth/request-code", request).status, 429);
    m_service->advance(1s);
    QCOMPARE(m_service->post("/v1/auth/request-code", request).status, 200);

    for (int i = 0; i < 14; ++i)
        QVERIFY(!m_service->code(u"a%1@example.com"_s.arg(i)).isEmpty());
    const auto crowded = m_service->post("/v1/auth/request-code", {{u"email"_s, u"last@example.com"_s}});
    QVERIFY2(crowded.head.contains("\r\nRetry-After: 2700\r\n"), crowded.head);
}

void SignInTest::strangersKeepNobodyOut()
{
    const std::string email = maren.toStdString();
    SignIns signIns(m_service->path("strangers"), "key", [this] { return m_service->now(); });
    using Kind = SignIns::Failure::Kind;
    const auto attempt = [&](const std::string &digits, const char *network) -> std::optional<Kind> {
        const auto used = signIns.redeem(email, digits, network);
        return used ? std::nullopt : std::optional(used.error().kind);
    };
    const auto wrong = [](const std::string &digits) { return digits == "000000" ? "000001" : "000000"; };
    // Without a live code there is nothing to guess, and nothing is counted.
    for (int i = 0; i < 100; ++i)
        QCOMPARE(attempt("123456", "9.9.9.9"), Kind::noCode);
    const auto first = signIns.issue(email, "home");
    QVERIFY(first && !attempt(first->digits, "home")); // home is known from now on
    m_service->advance(16min);

    const auto mine = signIns.issue(email, "home").value();
    for (int i = 0; i < 5; ++i) // voids no code but its own, and uses up nothing of home's
        QVERIFY(signIns.issue(email, "9.9.9.9"));
    QCOMPARE(signIns.issue(email, "8.8.8.8").error().kind, Kind::tooMany);
    QVERIFY(signIns.issue(email, "home"));
    const auto now = signIns.issue(email, "home").value();
    QCOMPARE(attempt(mine.digits, "home"), mine.digits == now.digits ? std::nullopt : std::optional(Kind::wrongCode));
    // Guesses from anywhere: five at a code from one network, thirty a day from all strangers together.
    int tried = 0;
    for (const char *network : {"1.1.1.1", "2.2.2.2", "3.3.3.3", "4.4.4.4", "5.5.5.5", "6.6.6.6", "7.7.7.7"}) {
        for (int i = 0; i < 6; ++i)
            tried += attempt(wrong(now.digits), network) == Kind::wrongCode ? 1 : 0;
    }
    QCOMPARE(tried, 29); // home was a stranger, too, when it signed in first
    QCOMPARE(attempt(now.digits, "7.7.7.7"), Kind::tooMany);
    QVERIFY(!attempt(now.digits, "home"));
    QVERIFY(attempt(now.digits, "home")); // good for one sign-in
}

void SignInTest::codesAreMailed()
{
    // A mail server of one mail at a time: what it answers to the recipient, and what it was given.
    QTcpServer server;
    QByteArray answer = "250 ok";
    QByteArray mail;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    connect(&server, &QTcpServer::newConnection, this, [&] {
        QTcpSocket *peer = server.nextPendingConnection();
        peer->write("220 here\r\n");
        connect(peer, &QTcpSocket::readyRead, this, [&, peer] {
            while (peer->canReadLine()) {
                const QByteArray line = peer->readLine();
                mail += line;
                if (line.startsWith("RCPT"))
                    peer->write(answer + "\r\n");
                else if (line == "DATA\r\n")
                    peer->write("354 go on\r\n");
                else if (line == ".\r\n" || line.startsWith("EHLO") || line.startsWith("MAIL") ||
                         line.startsWith("QUIT"))
                    peer->write("250 ok\r\n");
            }
        });
    });
    auto settings = Mailer::at("smtp://127.0.0.1:" + std::to_string(server.serverPort())).value();
    settings.sender = "codes@example.com";
    Mailer mailer(settings);
    const SignIns::Code code{"012345", m_service->now() + 10min};
    const auto send = [&] {
        auto outcome = std::async(std::launch::async, [&] { return mailer.send(code, "maren@example.com", "Desk"); });
        while (outcome.wait_for(0s) != std::future_status::ready)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        return outcome.get();
    };
    QCOMPARE(send(), Mailer::Outcome::sent);
    for (const char *part :
         {"MAIL FROM:<codes@example.com>", "RCPT TO:<maren@example.com>", "\r\nTo: <maren@example.com>\r\n",
          "\r\nSubject: 012345 is", "\r\nAuto-Submitted: ", "\r\n\r\n012345 is your code", "\"Desk\""})
        QVERIFY2(mail.contains(part), mail);
    answer = "550 nobody of that name";
    QCOMPARE(send(), Mailer::Outcome::refused);
    answer = "451 come again"; // and so it does, as long as the code lives
    QCOMPARE(send(), Mailer::Outcome::sent);
    server.close();
    QCOMPARE(send(), Mailer::Outcome::failed);
    QVERIFY(!Mailer::at("smtp://") && !Mailer::at("http://127.0.0.1") && !Mailer::at("smtp://a@b"));
    QVERIFY(!Mailer::at("smtp://mail.example.com").value().isLocal); // so there is STARTTLS, or no mail

    m_service->setDelivery(Mailer::Outcome::failed);
    QCOMPARE(m_service->post("/v1/auth/request-code", {{u"email"_s, maren}}).code(), u"code_not_sent"_s);
    m_service->setDelivery(Mailer::Outcome::refused);
    QCOMPARE(m_service->post("/v1/auth/request-code", {{u"email"_s, maren}}).code(), u"invalid_email"_s);
    SignIns capped(
        m_service->path("capped"), "key", [this] { return m_service->now(); }, 2);
    QVERIFY(capped.issue("a@example.com", "1") && capped.issue("b@example.com", "2"));
    QCOMPARE(capped.issue("c@example.com", "3").error().wait, 24h);
}

void SignInTest::aRestartForgetsNothing()
{
    const QByteArray token = m_service->signIn(maren, u"Desk"_s);
    const QString digits = m_service->code(maren);
    m_service->accounts().reserve(m_service->accounts().find(token.toStdString()).value(), 600)->settle();
    const QByteArray bytes = stored("db");
    QVERIFY(bytes.contains(QCryptographicHash::hash(token, QCryptographicHash::Sha256)));
    QVERIFY(!bytes.contains(token.mid(4)));
    QVERIFY(!bytes.contains(digits.toUtf8()));
    m_service->restart();
    QCOMPARE(m_service->get("/v1/me", token).body[u"remainingSeconds"_s].toInt(), 3000);
    QCOMPARE(verify(digits).status, 200);
}

void SignInTest::anOlderDatabaseIsBroughtUpToDate()
{
    const auto path = m_service->path("old");
    const QByteArray hash = QCryptographicHash::hash("svs_old", QCryptographicHash::Sha256).toHex();
    {
        Database old(path);
        old.execute(("CREATE TABLE account(id INTEGER PRIMARY KEY, email TEXT NOT NULL UNIQUE, daily_seconds INTEGER"
                     " NOT NULL);CREATE TABLE session(token_hash BLOB PRIMARY KEY, account INTEGER NOT NULL REFERENCES"
                     " account(id), device TEXT NOT NULL, created_at TEXT NOT NULL);CREATE TABLE usage(account INTEGER"
                     " NOT NULL, day INTEGER NOT NULL, seconds INTEGER NOT NULL, PRIMARY KEY(account, day));"
                     "INSERT INTO account VALUES(7, 'a@example.com', 120);"
                     "INSERT INTO usage VALUES(7, 20000, 50);INSERT INTO session VALUES(x'" +
                     hash + "', 7, 'Desk', '2024-10-04T08:00:00Z')")
                        .constData());
    }
    // By a server alone: an older one may still be running beside a command.
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, Accounts(path, systemTime, Schema::Older::isRefused));
    for (int i = 0; i < 2; ++i) { // the second time there is nothing to change
        Accounts accounts(path, [] { return std::chrono::sys_days(std::chrono::days(20000)); });
        const Account account = accounts.find("svs_old").value();
        QCOMPARE(account.remainingSeconds(), 70);
        const auto sessions = accounts.sessions(account, "svs_old");
        QCOMPARE(sessions.size(), size_t{1});
        QVERIFY(sessions[0].current);
        QCOMPARE(sessions[0].createdAt, std::chrono::sys_days(2024y / 10 / 4) + 8h);
    }
    Accounts later(path, [] { return std::chrono::sys_days(std::chrono::days(30000)); });
    QVERIFY(!later.find("svs_old")); // idle for years
    Database(path).execute("PRAGMA user_version=99");
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, Accounts{path});
}

void SignInTest::closedSignUpsLetOnlyAccountsIn()
{
    const QString stranger = u"tobin@example.com"_s;
    m_service->signIn(maren, u"Desk"_s);
    const QString early = m_service->code(stranger);
    m_service->restart(AccountRoutes::SignUps::closed);
    QCOMPARE(verify(early, stranger).code(), u"signups_closed"_s);
    QCOMPARE(m_service->post("/v1/auth/request-code", {{u"email"_s, stranger}}).code(), u"signups_closed"_s);
    const QByteArray laptop = m_service->signIn(maren, u"Laptop"_s);
    QCOMPARE(m_service->get("/v1/me", laptop).status, 200);
    m_service->accounts().setDisabled(maren.toStdString(), true);
    QCOMPARE(m_service->get("/v1/me", laptop).code(), u"account_disabled"_s);
    QCOMPARE(m_service->post("/v1/auth/request-code", {{u"email"_s, maren}}).code(), u"account_disabled"_s);
}

void SignInTest::refusesBadRequests_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QByteArray>("headers");
    const auto row = [](const char *name, const char *line, const QByteArray &body, int status, const char *code,
                        const QByteArray &headers = {}) {
        QTest::newRow(name) << QByteArray(line) << body << status << QString::fromUtf8(code) << headers;
    };
    const char *ask = "POST /v1/auth/request-code";
    const char *verify = "POST /v1/auth/verify";
    row("not JSON", ask, "email=a@example.com", 400, "bad_request");
    row("no body", ask, {}, 400, "bad_request", "Content-Length: 0\r\n");
    row("nested without end", verify, QByteArray(9000, '['), 400, "bad_request");
    row("wrong type, code", verify, R"({"email":"a@example.com","code":123456})", 400, "bad_request");
    row("bad UTF-8", ask, "{\"email\":\"a@example.com\",\"device\":\"\xff\"}", 400, "bad_request");
    row("no e-mail", ask, R"({"device":"Desk"})", 400, "bad_request");
    row("no such address", ask, R"({"email":"a b@example.com"})", 400, "invalid_email");
    row("two recipients", ask, R"({"email":"a@example.com,b@example.com"})", 400, "invalid_email");
    row("look-alike letters", ask, R"({"email":"а@example.com"})", 400, "invalid_email");
    row("other digits", verify, R"({"email":"a@example.com","code":"１２３４５６"})", 400, "invalid_code");
    row("huge", ask, "{\"email\":\"" + QByteArray(20'000, 'a') + "\"}", 413, "payload_too_large");
    row("huge, in chunks", ask, {}, 413, "payload_too_large",
        "Transfer-Encoding: chunked\r\n\r\n5000\r\n" + QByteArray(0x5000, 'x') + "\r\n0\r\n");
    row("wrong method", "GET /v1/auth/verify", {}, 405, "method_not_allowed");
    for (const char *line :
         {"GET /v1/me", "GET /v1/auth/sessions", "POST /v1/auth/logout", "POST /v1/auth/sessions/revoke"}) {
        const QByteArray body = line[0] == 'P' ? "{\"id\":\"1\"}" : "";
        QTest::addRow("%s, nobody", line) << QByteArray(line) << body << 401 << u"unauthorized"_s << QByteArray();
        QTest::addRow("%s, garbled", line) << QByteArray(line) << body << 401 << u"unauthorized"_s
                                           << QByteArray("Authorization: Bearer \xff\x01 svs_\r\n");
    }
}

void SignInTest::refusesBadRequests()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, body);
    QFETCH(int, status);
    QFETCH(QString, code);
    QFETCH(QByteArray, headers);
    const auto answer = m_service->send(Exchange::request(line, {}, headers, body));
    QCOMPARE(answer.status, status);
    QCOMPARE(answer.code(), code);
    QVERIFY(answer.message().endsWith(QLatin1Char('.')));
    QVERIFY(m_service->lastDevice().isEmpty()); // no code was shown
}

void SignInTest::networksAreAsCoarseAsTheyMust()
{
    QCOMPARE(ClientNetwork::of("2001:db8:1:2:3:4:5:6"), ClientNetwork::of("2001:db8:1:2::1"));
    QVERIFY(ClientNetwork::of("2001:db8:1:3::1") != ClientNetwork::of("2001:db8:1:2::1"));
    QCOMPARE(ClientNetwork::of("::ffff:192.0.2.1"), std::string("192.0.2.1"));
}

QTEST_GUILESS_MAIN(SignInTest)
#include "SignInTest.moc"
