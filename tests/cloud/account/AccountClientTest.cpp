#include "cloud/account/AccountFixture.h"

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
    void onlyTheSessionOfThisComputerIsDropped();
    void lateNewsOfASessionChangesNoOther();
    void aReadIsTriedAgainOnce();
    void readsSessions();
    void readsAVerifiedSession();
    void rulesOfTexts();

private:
    AccountClient &client() { return m->client; }

    std::unique_ptr<AccountFixture> m;
};

void AccountClientTest::saysWhatTheServiceExpects()
{
    const auto sentBy = [this](auto &&task) {
        m->machine.http.answer(204, {});
        QCoro::waitFor(std::move(task));
        return m->sent();
    };
    QCOMPARE(sentBy(client().requestCode(u" A@B.Test\n"_s, u" \n"_s, {})),
             uR"(POST /v1/auth/request-code - {"device":"Mac","email":"a@b.test"})"_s);
    QCOMPARE(sentBy(client().verify(u"A@b.test"_s, u" 123456\n"_s, u"Study"_s, {})),
             uR"(POST /v1/auth/verify - {"code":"123456","device":"Study","email":"a@b.test"})"_s);
    QCOMPARE(sentBy(client().me(u"svs_1"_s, {})), u"GET /v1/me svs_1 "_s);
    QCOMPARE(sentBy(client().logout(u"svs_1"_s, {})), u"POST /v1/auth/logout svs_1 {}"_s);
    QCOMPARE(sentBy(client().sessions(u"svs_1"_s, {})), u"GET /v1/auth/sessions svs_1 "_s);
    QCOMPARE(sentBy(client().revokeSession(u"svs_1"_s, u"7"_s, {})),
             uR"(POST /v1/auth/sessions/revoke svs_1 {"id":"7"})"_s);
    QCOMPARE(m->machine.http.requests.last().timeout, 30s);
    m->machine.defaults.values.insert(u"accountBaseURL"_s, u"https://other.test/x/"_s);
    m->machine.http.willAnswer(200, R"({"expiresInSeconds":90})");
    QCOMPARE(QCoro::waitFor(client().requestCode({}, {}, {})).value_or(0), 90);
    QCOMPARE(m->machine.http.requests.last().url.toString(), u"https://other.test/x/v1/auth/request-code"_s);
    m->machine.http.willAnswer(std::unexpected(TransportError{}));
    QCOMPARE(told(QCoro::waitFor(client().requestCode({}, {}, {}))),
             u"network: Could not reach Sayvane. Check the network and try again."_s);
    m->machine.http.willAnswer(std::unexpected(TransportError{TransportError::Kind::tooLarge, {}}));
    QCOMPARE(told(QCoro::waitFor(client().requestCode({}, {}, {}))), u"bad_response: "_s + unreadable);
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
    row("capitals and a blank", 500, u"RATE_LIMITED "_s, tooMany, true);
    row("a code over 401", 401, u"code_expired"_s, u"That code has expired. Ask for a new one."_s, false);
    row("429", 429, {}, tooMany, true);
    row("403, unknown code", 403, u"banned"_s, u"This account cannot be used. Please get in touch."_s, true);
    row("401", 401, {}, signedOut, false);
    row("401, unknown code", 401, u"odd"_s, signedOut, false);
    row("503", 503, {}, u"Sayvane: HTTP 503."_s, true);
}

void AccountClientTest::explainsARefusal()
{
    QFETCH(int, status);
    QFETCH(QString, code);
    QFETCH(QString, own);
    QFETCH(bool, serviceWins);
    const QString normalised = code.trimmed().toLower();
    const QString otherwise = own == signedOut ? u"unauthorized"_s : u"-"_s;
    const bool isRateLimit = normalised.endsWith(u"rate_limited"_s);
    for (const QString &message :
         {u""_s, u" \\n"_s, u" Their words. "_s, u" "_s + u"Their words. "_s.repeated(99999)}) {
        m->machine.http.willAnswer(status,
                                   u"{\"error\":{\"code\":\"%1\",\"message\":\"%2\"}}"_s.arg(code, message).toUtf8(),
                                   {{"retry-after", "7.2"}});
        const AccountError error = QCoro::waitFor(client().requestCode(u"a@b.test"_s, {}, {})).error();
        const QString words = message.size() > 1000 ? message.sliced(1, 1000) + u'…' : u"Their words."_s;
        QCOMPARE(error.message, serviceWins && message.contains(u"words"_s) ? words : own);
        QCOMPARE(error.code.value_or(u"-"_s), normalised.isEmpty() ? otherwise : normalised);
        QCOMPARE(error.isRateLimited(), isRateLimit);
        QCOMPARE(error.retryAfterSeconds.value_or(-1), isRateLimit || status == 429 ? 8 : -1);
    }
    QCOMPARE(m->machine.http.requests.size(), 4); // nothing that is sent is sent twice
}

void AccountClientTest::onlyTheSessionOfThisComputerIsDropped()
{
    QSignalSpy rejections(&m->account, &AccountStatus::sessionRejected);
    const auto drops = [&](const QString &token, auto &&call) {
        m->signIn(token);
        m->machine.http.willAnswer(401, "<html>");
        const bool isTold = told(QCoro::waitFor(call(token))) == u"unauthorized: "_s + signedOut;
        return isTold && !m->account.signedIn() && !m->sessions.token();
    };
    const auto me = [this](const QString &token) { return client().me(token, {}); };
    QVERIFY(drops(u"svs_1"_s, me));
    QVERIFY(drops(u"svs_1"_s, [this](const QString &token) { return client().sessions(token, {}); }));
    QVERIFY(drops(u"svs_1"_s, [this](const QString &token) { return client().revokeSession(token, {}, {}); }));
    QCOMPARE(rejections.size(), 3);
    QVERIFY(!drops(u"svs_1"_s, [this](const QString &token) { return client().logout(token, {}); }));
    QVERIFY(!drops(u"key_1"_s, me));
    QCOMPARE(rejections.size(), 3);
}

void AccountClientTest::lateNewsOfASessionChangesNoOther()
{
    const QByteArray news = R"({"email":"old@b.test","remainingSeconds":5})";
    for (const bool isNewer : {false, true}) { // or there is none
        for (const QList<int> &statuses : {QList{200}, QList{401}, QList{503, 401}, QList{503, 200}}) {
            m->signIn(u"svs_1"_s);
            client().me(u"svs_1"_s, {});
            m->sessions.clear();
            m->account.signOut();
            if (isNewer)
                m->signIn(u"svs_2"_s);
            for (const int status : statuses) {
                m->machine.http.answer(status, news);
                m->machine.clock.advance(1s);
            }
            QCOMPARE(m->sessions.token(), isNewer ? std::optional(u"svs_2"_s) : std::nullopt);
            QCOMPARE(m->account.signedIn(), isNewer);
            QCOMPARE(m->prefs.accountEmail(), isNewer ? u"a@b.test"_s : QString());
            QCOMPARE(m->account.remainingSeconds(), std::nullopt);
        }
    }
}

void AccountClientTest::aReadIsTriedAgainOnce()
{
    for (const int status : {502, 503, 504}) {
        QString outcome;
        client().me(u"svs_1"_s, {}).then([&](const auto &info) { outcome = told(info); });
        m->machine.http.answer(status, {});
        m->machine.clock.advance(999ms);
        QCOMPARE(m->machine.http.waiting(), 0);
        m->machine.clock.advance(1ms);
        m->machine.http.answer(status, {});
        QCOMPARE(outcome, u"-: Sayvane: HTTP %1."_s.arg(status));
    }
    // A wait that is cut short does not spare the second attempt.
    std::stop_source stop;
    client().sessions(u"svs_1"_s, stop.get_token());
    m->machine.http.answer(503, {});
    stop.request_stop();
    QCOMPARE(m->machine.http.requests.size(), 8);
    QCOMPARE(m->machine.clock.pendingTimers(), 0U);
}

void AccountClientTest::readsSessions()
{
    const auto read = [this](const QByteArray &body) {
        m->machine.http.willAnswer(200, body);
        const auto list = QCoro::waitFor(client().sessions(u"svs_1"_s, {}));
        QString summary;
        for (const DeviceSession &each : list.value_or(QList<DeviceSession>())) {
            const QString created = each.createdAt ? each.createdAt->toString(Qt::ISODateWithMs) : QString();
            summary += u"%1|%2|%3|%4;"_s.arg(each.id, each.device, created, QString::number(each.current));
        }
        return list ? summary : list.error().message;
    };
    const QByteArray one = R"([{"id":"a","device":"Desk","createdAt":"2025-03-01T09:30:00.5+01:00"}])";
    const QString desk = u"a|Desk|2025-03-01T08:30:00.500Z|0;"_s;
    QCOMPARE(read(one), desk);
    QCOMPARE(read("{\"sessions\":" + one + ",\"data\":[]}"), desk);
    QCOMPARE(read("{\"sessions\":null,\"data\":" + one + "}"), desk);
    QCOMPARE(read("{\"x\":1}"), QString());
    QCOMPARE(read(R"([{"id":42,"device":"","current":true},{"id":1.5,"device":3,"createdAt":5,"current":"yes"}])"),
             u"42|Unknown device||1;1.5|Unknown device||0;"_s);
    for (const char *bad : {R"([{"id":"a"},{"id":""}])", "[5]", R"({"sessions":5,"data":[]})", "<html>"})
        QCOMPARE(read(bad), unreadable);
}

void AccountClientTest::readsAVerifiedSession()
{
    const auto read = [](const QByteArray &body) {
        const auto session = AccountSession::decode(body, u" A@B.test "_s);
        if (!session)
            return session.error().message;
        return u"%1 %2 %3 "_s.arg(session->token, session->email, session->plan) +
               u"%1 %2"_s.arg(session->dailyMinutes).arg(session->expiresAt.has_value());
    };
    QCOMPARE(read(R"({"token":" svs_9\n","user":{"email":"New@b.test","plan":"pro","dailyMinutes":30},
                      "expiresAt":"2027-01-01T00:00:00Z"})"),
             u"svs_9 New@b.test pro 30 1"_s);
    QCOMPARE(read(R"({"token":"svs_9","expiresAt":"soon"})"), u"svs_9 a@b.test trial 0 0"_s);
    QCOMPARE(read(R"({"token":" "})"), u"Sayvane did not send a session back. Try signing in again."_s);
    QCOMPARE(read(R"({"token":"svs_9","user":{"dailyMinutes":0.5}})"), unreadable);
    QCOMPARE(read(R"({"token":"svs_9","user":[]})"), unreadable);
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
    for (const char *text : {"", "Wed, 21 Oct 2015 07:28:00 GMT", "7s", "nan", "inf", "1e999"})
        QCOMPARE(seconds(text), -1);
    for (const QString &bad : {u"2025-03-01T09:30:00"_s, u"2025-03-01T09:30Z"_s, u"2025-02-30T09:30:00Z"_s})
        QVERIFY2(!AccountClient::date(bad), qPrintable(bad));
    QCOMPARE(AccountClient::trim(u" "_s + u"👩‍👩‍👧‍👦"_s.repeated(70)),
             u"👩‍👩‍👧‍👦"_s.repeated(64));
}

QTEST_GUILESS_MAIN(AccountClientTest)
#include "AccountClientTest.moc"
