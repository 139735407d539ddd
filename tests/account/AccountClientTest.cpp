#include "account/AccountFixture.h"

#include <QCoroTask>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString signedOut = u"Signed out. Sign in again in Settings."_s;
const QString unreadable = u"Sayvane sent something this app could not read."_s;

/// "code: message", or "ok".
template <typename T>
QString told(const AccountClient::Result<T> &result)
{
    return result ? u"ok"_s : result.error().code.value_or(u"-"_s) + u": "_s + result.error().message;
}

} // namespace

class AccountClientTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<AccountFixture>(); }
    void cleanup() { m.reset(); }

    void saysWhatTheServiceExpects();
    void explainsARefusal_data();
    void explainsARefusal();
    void onlyTheSessionOfThisComputerIsDropped_data();
    void onlyTheSessionOfThisComputerIsDropped();
    void aReadIsTriedAgainOnce();
    void readsSessions_data();
    void readsSessions();
    void readsAVerifiedSession_data();
    void readsAVerifiedSession();
    void tellsTheStatusOfTheAccount();
    void rulesOfTexts();

private:
    std::unique_ptr<AccountFixture> m;
};

void AccountClientTest::saysWhatTheServiceExpects()
{
    const auto sentBy = [this](auto &&task) {
        m->machine.http.answer(204, {});
        QCoro::waitFor(std::move(task));
        return m->sent();
    };
    AccountClient &client = m->client;
    QCOMPARE(sentBy(client.requestCode(u" A@B.Test\n"_s, u" \n"_s, {})),
             uR"(POST /v1/auth/request-code - {"device":"Mac","email":"a@b.test"})"_s);
    QCOMPARE(sentBy(client.verify(u"A@b.test"_s, u" 123456\n"_s, u"Study"_s, {})),
             uR"(POST /v1/auth/verify - {"code":"123456","device":"Study","email":"a@b.test"})"_s);
    QCOMPARE(sentBy(client.me(u"svs_1"_s, {})), u"GET /v1/me svs_1 "_s);
    QCOMPARE(sentBy(client.logout(u"svs_1"_s, {})), u"POST /v1/auth/logout svs_1 {}"_s);
    QCOMPARE(sentBy(client.sessions(u"svs_1"_s, {})), u"GET /v1/auth/sessions svs_1 "_s);
    QCOMPARE(sentBy(client.revokeSession(u"svs_1"_s, u"7"_s, {})),
             uR"(POST /v1/auth/sessions/revoke svs_1 {"id":"7"})"_s);
    const HttpRequest &request = m->machine.http.requests.last();
    QCOMPARE(request.timeout, 30s);
    const QList<std::pair<QByteArray, QByteArray>> headers{
        {"Accept", "application/json"}, {"Authorization", "Bearer svs_1"}, {"Content-Type", "application/json"}};
    QCOMPARE(request.headers, headers);
    m->machine.defaults.values.insert(u"accountBaseURL"_s, u"https://Other.test/x/"_s);
    m->machine.http.willAnswer(200, R"({"expiresInSeconds":90})");
    QCOMPARE(QCoro::waitFor(client.requestCode({}, {}, {})).value_or(0), 90);
    QCOMPARE(m->machine.http.requests.last().url.toString(), u"https://other.test/x/v1/auth/request-code"_s);
    m->machine.http.willAnswer(std::unexpected(TransportError{}));
    QCOMPARE(told(QCoro::waitFor(client.requestCode({}, {}, {}))),
             u"network: Could not reach Sayvane. Check the network and try again."_s);
}

void AccountClientTest::explainsARefusal_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("code"); // as sent; empty for none
    QTest::addColumn<QString>("own");
    QTest::addColumn<bool>("serviceWins");
    const auto row = [](const char *name, int status, const QString &code, const QString &own, bool serviceWins) {
        QTest::newRow(name) << status << code << own << serviceWins;
    };
    const auto code = [&](const char *name, const QString &own, bool serviceWins) {
        row(name, 400, QString::fromLatin1(name), own, serviceWins);
    };
    const QString tooMany = u"Too many requests just now. Try again in a moment."_s;
    code("unauthorized", signedOut, false);
    code("unauthorised", signedOut, false);
    code("invalid_token", signedOut, false);
    code("signups_closed", u"Testing is full for now, ask Orrin for an invite."_s, false);
    code("invalid_code", u"That code is not right. Check it and try again."_s, false);
    code("code_expired", u"That code has expired. Ask for a new one."_s, false);
    code("invalid_email", u"That does not look like an email address."_s, false);
    code("rate_limited", tooMany, true);
    code("upstream_rate_limited", tooMany, true);
    code("quota_exceeded", u"Today's dictation allowance is used up. It resets at midnight UTC."_s, true);
    code("refused", u"That request was declined."_s, true);
    code("labs_unavailable", u"Labs is not available right now. Try again shortly."_s, true);
    code("upstream_auth", u"Sayvane's connection to that provider was rejected."_s, true);
    code("upstream_error", u"Could not reach that provider. Try again."_s, true);
    code("upstream_unreachable", u"Could not reach that provider. Try again."_s, true);
    code("upstream_timeout", u"That provider took too long to answer. Try again."_s, true);
    code("bad_request", u"That request could not be understood."_s, true);
    row("capitals and blanks", 500, u"RATE_LIMITED "_s, tooMany, true);
    row("a code decides over 401", 401, u"invalid_code"_s, u"That code is not right. Check it and try again."_s, false);
    row("429", 429, {}, tooMany, true);
    row("403, unknown code", 403, u"banned"_s, u"This account cannot be used. Please get in touch."_s, true);
    row("401", 401, {}, signedOut, false);
    row("401, unknown code", 401, u"odd"_s, signedOut, false);
    row("503", 503, {}, u"Sayvane: HTTP 503."_s, true);
    row("0", 0, u" "_s, u"Sayvane: HTTP 0."_s, true);
}

void AccountClientTest::explainsARefusal()
{
    QFETCH(int, status);
    QFETCH(QString, code);
    QFETCH(QString, own);
    QFETCH(bool, serviceWins);
    const QString normalised = code.trimmed().toLower();
    const bool isRateLimit = normalised.endsWith(u"rate_limited"_s);
    for (const QString &message : {u""_s, u" \\n"_s, u" Their words. "_s}) {
        m->machine.http.willAnswer(status,
                                   u"{\"error\":{\"code\":\"%1\",\"message\":\"%2\"}}"_s.arg(code, message).toUtf8(),
                                   {{"retry-after", "7.2"}});
        const auto result = QCoro::waitFor(m->client.requestCode(u"a@b.test"_s, {}, {}));
        const AccountError error = result.error();
        QCOMPARE(error.message, serviceWins && message.contains(u"words"_s) ? u"Their words."_s : own);
        const QString absent = own == signedOut ? u"unauthorized"_s : u"-"_s;
        QCOMPARE(error.code.value_or(u"-"_s), normalised.isEmpty() ? absent : normalised);
        QCOMPARE(error.isRateLimited(), isRateLimit);
        QCOMPARE(error.retryAfterSeconds.value_or(-1), isRateLimit || status == 429 ? 8 : -1);
    }
    QCOMPARE(m->machine.http.requests.size(), 3); // nothing that is sent is sent twice
    // A body of another shape tells nothing.
    m->machine.http.willAnswer(403, R"({"error":{"code":"refused","message":5}})");
    QVERIFY(told(QCoro::waitFor(m->client.logout({}, {}))).startsWith(u"-: This account"_s));
}

void AccountClientTest::onlyTheSessionOfThisComputerIsDropped_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("token");
    QTest::addColumn<bool>("isDropped");
    QTest::newRow("sessions") << u"sessions"_s << u"svs_1"_s << true;
    QTest::newRow("me") << u"me"_s << u"svs_1"_s << true;
    QTest::newRow("revoke") << u"revoke"_s << u"svs_1"_s << true;
    QTest::newRow("logout") << u"logout"_s << u"svs_1"_s << false;
    QTest::newRow("another kind of token") << u"me"_s << u"key_1"_s << false;
}

void AccountClientTest::onlyTheSessionOfThisComputerIsDropped()
{
    QFETCH(QString, call);
    QFETCH(QString, token);
    m->signIn(token);
    m->machine.http.willAnswer(401, "<html>");
    QSignalSpy rejections(&m->account, &AccountStatus::sessionRejected);
    const QString outcome = call == u"me"         ? told(QCoro::waitFor(m->client.me(token, {})))
                            : call == u"sessions" ? told(QCoro::waitFor(m->client.sessions(token, {})))
                            : call == u"revoke"   ? told(QCoro::waitFor(m->client.revokeSession(token, {}, {})))
                                                  : told(QCoro::waitFor(m->client.logout(token, {})));
    QCOMPARE(outcome, u"unauthorized: "_s + signedOut);
    QFETCH(bool, isDropped);
    QCOMPARE(m->account.signedIn(), !isDropped);
    QCOMPARE(m->sessions.token().has_value(), !isDropped);
    QCOMPARE(rejections.size(), isDropped ? 1 : 0);
}

void AccountClientTest::aReadIsTriedAgainOnce()
{
    for (const int status : {502, 503, 504}) {
        QString outcome;
        m->client.me(u"svs_1"_s, {}).then([&](const auto &info) { outcome = told(info); });
        m->machine.http.answer(status, {});
        m->machine.clock.advance(999ms);
        QCOMPARE(m->machine.http.waiting(), 0);
        m->machine.clock.advance(1ms);
        m->machine.http.answer(status, {});
        QCOMPARE(outcome, u"-: Sayvane: HTTP %1."_s.arg(status));
    }
    QCOMPARE(m->machine.http.requests.size(), 6);
    // A wait that is cut short does not spare the second attempt.
    std::stop_source stop;
    m->client.sessions(u"svs_1"_s, stop.get_token());
    m->machine.http.answer(503, {});
    stop.request_stop();
    QCOMPARE(m->machine.http.requests.size(), 8);
    QCOMPARE(m->machine.clock.pendingTimers(), 0U);
    m->machine.http.willAnswer(503, {});
    QCOMPARE(told(QCoro::waitFor(m->client.requestCode({}, {}, {}))), u"-: Sayvane: HTTP 503."_s);
}

void AccountClientTest::readsSessions_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("devices"); // empty: not readable
    const QByteArray one = R"([{"id":"a","device":"Desk","createdAt":"2025-03-01T09:30:00.5+01:00","lastUsedAt":" "}])";
    const QString desk = u"a|Desk|2025-03-01T08:30:00.500Z||0;"_s;
    QTest::newRow("bare") << one << desk;
    QTest::newRow("sessions") << "{\"sessions\":" + one + ",\"data\":[]}" << desk;
    QTest::newRow("data") << "{\"sessions\":null,\"data\":" + one + "}" << desk;
    QTest::newRow("neither") << QByteArray("{\"x\":1}") << u"none"_s;
    QTest::newRow("odd members")
        << QByteArray(R"([{"id":42,"device":"","current":true},{"id":1.5,"device":3,"createdAt":5,"current":"yes"}])")
        << u"42|Unknown device|||1;1.5|Unknown device|||0;"_s;
    QTest::newRow("in order") << QByteArray(R"([{"id":"b"},{"id":"a"}])")
                              << u"b|Unknown device|||0;a|Unknown device|||0;"_s;
    QTest::newRow("one without id") << QByteArray(R"([{"id":"a"},{"id":""}])") << QString();
    QTest::newRow("no objects") << QByteArray("[5]") << QString();
    QTest::newRow("not a list") << QByteArray(R"({"sessions":5,"data":[]})") << QString();
    QTest::newRow("no JSON") << QByteArray("<html>") << QString();
}

void AccountClientTest::readsSessions()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, devices);
    m->machine.http.willAnswer(200, body);
    const auto list = QCoro::waitFor(m->client.sessions(u"svs_1"_s, {}));
    QCOMPARE(told(list), devices.isEmpty() ? u"bad_response: "_s + unreadable : u"ok"_s);
    const auto date = [](const std::optional<QDateTime> &at) {
        return at ? at->toString(Qt::ISODateWithMs) : QString();
    };
    QString summary;
    for (const DeviceSession &each : list.value_or(QList<DeviceSession>()))
        summary += QStringList{each.id, each.device, date(each.createdAt), date(each.lastUsedAt),
                               QString::number(each.current)}
                       .join(u'|') +
                   u';';
    QCOMPARE(summary, devices == u"none" ? QString() : devices);
}

void AccountClientTest::readsAVerifiedSession_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("session"); // or the error's sentence
    const QString noSession = u"Sayvane did not send a session back. Try signing in again."_s;
    QTest::newRow("all") << QByteArray(R"({"token":" svs_9\n","user":{"email":"New@b.test","plan":"pro",
        "dailyMinutes":30},"expiresAt":"2027-01-01T00:00:00Z"})")
                         << u"svs_9 New@b.test pro 30 1"_s;
    QTest::newRow("token alone") << QByteArray(R"({"token":"svs_9","expiresAt":"soon"})")
                                 << u"svs_9 a@b.test trial 0 0"_s;
    QTest::newRow("blank token") << QByteArray(R"({"token":" "})") << noSession;
    QTest::newRow("no token") << QByteArray("{}") << noSession;
    QTest::newRow("odd minutes") << QByteArray(R"({"token":"svs_9","user":{"dailyMinutes":0.5}})") << unreadable;
    QTest::newRow("odd user") << QByteArray(R"({"token":"svs_9","user":[]})") << unreadable;
    QTest::newRow("no object") << QByteArray("[]") << unreadable;
}

void AccountClientTest::readsAVerifiedSession()
{
    QFETCH(QByteArray, body);
    m->machine.http.willAnswer(200, body);
    const auto session = QCoro::waitFor(m->client.verify(u" A@B.test "_s, u"1"_s, {}, {}));
    const QString summary = session ? u"%1 %2 %3 %4 %5"_s.arg(session->token, session->email, session->plan)
                                          .arg(session->dailyMinutes)
                                          .arg(session->expiresAt.has_value())
                                    : session.error().message;
    QTEST(summary, "session");
    QVERIFY(session || session.error().code == u"bad_response");
}

void AccountClientTest::tellsTheStatusOfTheAccount()
{
    m->signIn(u"svs_1"_s);
    m->machine.http.willAnswer(200, R"({"email":"new@b.test","plan":"pro","remainingSeconds":-3,"dailyMinutes":null})");
    QCOMPARE(told(QCoro::waitFor(m->client.me(u"svs_1"_s, {}))), u"ok"_s);
    QCOMPARE(m->account.email(), u"new@b.test"_s);
    QCOMPARE(m->account.property("remainingSeconds").toInt(), 0);
    QVERIFY(!m->account.property("dailyMinutes").isValid());
    m->machine.http.willAnswer(200, R"({"plan":"free","usedTodaySeconds":"5"})");
    QCOMPARE(told(QCoro::waitFor(m->client.me(u"svs_1"_s, {}))), u"bad_response: "_s + unreadable);
    QCOMPARE(m->account.info()->plan, u"pro"_s);
}

void AccountClientTest::rulesOfTexts()
{
    for (const QString &good : {u" A.b@C.D-e.test\n"_s, u"a@b.c"_s, u"x"_s.repeated(248) + u"@b.com"_s})
        QVERIFY2(AccountClient::looksLikeEmail(good), qPrintable(good));
    for (const QString &bad : {u""_s, u"a.b"_s, u"a@b@c.d"_s, u"@b.c"_s, u"a@b"_s, u"a@.b"_s, u"a@b."_s, u"a b@c.d"_s,
                               u"a@b\u00a0.c"_s, u"x"_s.repeated(249) + u"@b.com"_s})
        QVERIFY2(!AccountClient::looksLikeEmail(bad), qPrintable(bad));
    const auto seconds = [](const char *text) {
        return AccountClient::seconds(QString::fromLatin1(text)).value_or(-1);
    };
    QCOMPARE(seconds("\t7.2 "), 8);
    QCOMPARE(seconds("90000"), 3600);
    QCOMPARE(seconds("0"), 0);
    for (const char *text : {"", "Wed, 21 Oct 2015 07:28:00 GMT", "7s", "nan", "inf", "1e999"})
        QCOMPARE(seconds(text), -1);
    QCOMPARE(AccountClient::seconds(std::nullopt), std::nullopt);
    for (const QString &bad :
         {u"2025-03-01"_s, u"2025-03-01T09:30:00"_s, u"2025-03-01T09:30Z"_s, u"2025-02-30T09:30:00Z"_s})
        QVERIFY2(!AccountClient::date(bad), qPrintable(bad));
    QCOMPARE(AccountClient::trim(u" "_s + u"👩‍👩‍👧‍👦"_s.repeated(70)),
             u"👩‍👩‍👧‍👦"_s.repeated(64));
}

QTEST_GUILESS_MAIN(AccountClientTest)
#include "AccountClientTest.moc"
