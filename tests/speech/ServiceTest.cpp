#include "speech/SpeechFixture.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class ServiceTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m = std::make_unique<SpeechFixture>();
        m->choose(u"sayvane"_s);
    }
    void cleanup() { m.reset(); }

    void triesAgainOnce_data();
    void triesAgainOnce();
    void aSecondTryCanSucceed();
    void stoppingEndsTheWait();
    void explainsARefusal_data();
    void explainsARefusal();
    void aSecondRejectionSignsNobodyOut();
    void keepsAccountOfTheTimeLeft_data();
    void keepsAccountOfTheTimeLeft();

private:
    std::unique_ptr<SpeechFixture> m;
};

void ServiceTest::triesAgainOnce_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("code");
    QTest::addColumn<std::optional<QByteArray>>("retryAfter");
    QTest::addColumn<int>("delayMs"); // -1: no second try
    const auto row = [](const char *name, int status, const QByteArray &code,
                        const std::optional<QByteArray> &retryAfter,
                        int delayMs) { QTest::newRow(name) << status << code << retryAfter << delayMs; };
    row("502", 502, {}, {}, 1500);
    row("504, whatever the code", 504, "quota_exceeded", {}, 1500);
    row("503", 503, "rate_limited", "1", -1);
    row("500", 500, "upstream_rate_limited", "1", -1);
    row("429 without a code", 429, {}, "1", -1);
    row("429 of another code", 429, "quota_exceeded", "1", -1);
    row("429 rate limited", 429, "rate_limited", {}, 1500);
    row("429 upstream, odd form", 429, " UPSTREAM_rate_limited\\n", {}, 1500);
    row("a fraction", 502, {}, "0.25", 250);
    row("blanks", 502, {}, "\t2 ", 2000);
    row("truncated to milliseconds", 502, {}, "1.2349", 1234);
    row("an exponent", 502, {}, "1e-1", 100);
    row("just below the longest", 502, {}, "4.999", 4999);
    row("beyond the longest", 502, {}, "12", 5000);
    row("beyond all numbers", 502, {}, "1e999", 5000);
    row("nothing", 502, {}, "0", 1500);
    row("negative", 502, {}, "-3", 1500);
    row("empty", 502, {}, "", 1500);
    row("a date", 502, {}, "Wed, 21 Oct 2026 07:28:00 GMT", 1500);
    row("a unit", 502, {}, "2 s", 1500);
    row("a decimal comma", 502, {}, "2,5", 1500);
    row("not a number", 502, {}, "nan", 1500);
}

void ServiceTest::triesAgainOnce()
{
    QFETCH(int, status);
    QFETCH(QByteArray, code);
    QFETCH(std::optional<QByteArray>, retryAfter);
    QFETCH(int, delayMs);
    HttpResponse response{status, {}, "{\"error\":{\"code\":\"" + code + "\"}}"};
    if (retryAfter)
        response.headers = {{"retry-after", *retryAfter}};
    m->transcribe();
    m->http().answer(response);
    QCOMPARE(m->outcome() == u"waiting", delayMs >= 0);
    m->machine.clock.advance(std::chrono::milliseconds(delayMs - 1));
    QCOMPARE(m->http().requests.size(), 1);
    m->machine.clock.advance(1ms);
    QCOMPARE(m->http().requests.size(), delayMs >= 0 ? 2 : 1);
    if (delayMs < 0)
        return;
    QCOMPARE(m->http().requests.first().body, m->http().requests.last().body);
    m->http().answer(response);
    QVERIFY(m->outcome().startsWith(u"! Sayvane: "_s)); // and no third try
    QCOMPARE(m->machine.clock.pendingTimers(), 0U);
}

void ServiceTest::aSecondTryCanSucceed()
{
    m->transcribe();
    m->http().answer(429, R"({"error":{"code":"rate_limited"},"remainingSeconds":0})");
    QCOMPARE(m->account.remainingSeconds(), std::nullopt); // a first try tells nothing
    m->machine.clock.advance(1500ms);
    m->answerJson({{u"text"_s, u"hi"_s}});
    QCOMPARE(m->outcome(), u"hi"_s);
}

void ServiceTest::stoppingEndsTheWait()
{
    m->transcribe();
    m->http().answer(502, {});
    m->stop.request_stop();
    QCOMPARE(m->outcome(), u"! Cancelled."_s);
    QCOMPARE(m->machine.clock.pendingTimers(), 0U);
    m->machine.clock.advance(10s);
    QCOMPARE(m->http().requests.size(), 1);
}

void ServiceTest::explainsARefusal_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<std::optional<qint64>>("remaining");
    const auto row = [](const char *name, int status, const QByteArray &body, const QString &sentence,
                        const std::optional<qint64> &remaining = {}) {
        QTest::newRow(name) << status << body << sentence << remaining;
    };
    const QString usedUp = u"Sayvane: daily minutes used up. Resets at midnight UTC."_s;
    const QString busy = u"Sayvane: busy, try again in a moment."_s;
    const QString signedOut = u"Signed out. Sign in again in Settings."_s;
    row("quota", 429, R"({"error":{"code":"quota_exceeded"},"remainingSeconds":0})", usedUp, 0);
    row("quota in an odd form", 429, R"({"error":{"code":" QUOTA_EXCEEDED\n","message":"m"}})", usedUp);
    row("quota decides over 401", 401, R"({"error":{"code":"quota_exceeded"}})", usedUp);
    row("busy elsewhere", 503, R"({"error":{"code":"upstream_rate_limited"}})", busy);
    row("unauthorized", 400, R"({"error":{"code":"Unauthorized"}})", signedOut);
    row("invalid token", 403, R"({"error":{"code":"invalid_token","message":"m"}})", signedOut);
    row("401 of another code", 401, R"({"error":{"code":"x","message":"m"}})", signedOut);
    row("401 without a body", 401, {}, signedOut);
    row("429, nothing left", 429, R"({"remainingSeconds":0})", usedUp, 0);
    row("429, something left", 429, R"({"remainingSeconds":30})", u"Sayvane: HTTP 429"_s, 30);
    row("429, overdrawn", 429, R"({"remainingSeconds":-5})", u"Sayvane: HTTP 429"_s, 0);
    row("429, a count beyond 64 bits", 429, R"({"remainingSeconds":1e300})", u"Sayvane: HTTP 429"_s);
    row("429, a fraction", 429, R"({"error":{"message":"m"},"remainingSeconds":0.5})",
        u"Sayvane: HTTP 429"_s);
    row("429, a message", 429, R"({"error":{"message":" Slow. "},"remainingSeconds":9})",
        u"Sayvane:  Slow. "_s, 9);
    row("403", 403, R"({"error":{"code":"x","message":"m"}})",
        u"Sayvane: this account cannot be used. Please get in touch."_s);
    row("a code", 400, R"({"error":{"code":" Bad_Audio "}})", u"Sayvane: bad_audio"_s);
    row("a blank code", 400, R"({"error":{"code":" "}})", u"Sayvane: HTTP 400"_s);
    row("error null", 400, R"({"error":null})", u"Sayvane: HTTP 400"_s);
    row("a message of a wrong type", 400, R"({"error":{"code":"quota_exceeded","message":5}})",
        u"Sayvane: HTTP 400"_s);
    row("not JSON", 500, "<html>", u"Sayvane: HTTP 500"_s);
    row("not HTTP", 0, {}, u"Sayvane: HTTP 0"_s);
    row("not HTTP but a message", 0, R"({"error":{"message":"m"}})", u"Sayvane: m"_s);
    row("a redirect", 301, {}, u"Sayvane: HTTP 301"_s);
}

void ServiceTest::explainsARefusal()
{
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    QFETCH(QString, sentence);
    QSignalSpy rejections(&m->account, &AccountStatus::sessionRejected);
    const auto expectOutcome = [&] {
        QCOMPARE(m->outcome(), u"! "_s + sentence);
        QCOMPARE(m->result->error().kind, FlowError::Kind::api);
    };
    m->http().willAnswer(status, body);
    m->transcribe();
    expectOutcome();
    QTEST(m->account.remainingSeconds(), "remaining");
    const bool rejected = sentence.startsWith(u"Signed out"_s);
    QCOMPARE(rejections.size(), rejected ? 1 : 0);
    QCOMPARE(m->account.signedIn(), !rejected);
    QCOMPARE(m->secrets().items.contains(u"sayvane_session"_s), !rejected);
    if (rejected)
        m->sessions.save(u"svs_2"_s);
    m->http().willAnswer(status, body);
    m->cleanUp(u"one two three four"_s);
    expectOutcome();
}

void ServiceTest::aSecondRejectionSignsNobodyOut()
{
    QSignalSpy rejections(&m->account, &AccountStatus::sessionRejected);
    m->transcribe();
    m->sessions.clear(); // signed out meanwhile
    m->http().answer(401, {});
    QVERIFY(m->outcome().startsWith(u"! Sayvane: "_s));
    QCOMPARE(rejections.size(), 0);
}

void ServiceTest::keepsAccountOfTheTimeLeft_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<std::optional<qint64>>("remaining");
    using Seconds = std::optional<qint64>;
    QTest::newRow("told") << QByteArray(R"({"text":"hi","seconds":2,"remainingSeconds":1798})")
                          << Seconds(1798);
    QTest::newRow("not told") << QByteArray(R"({"text":"hi"})") << Seconds(60);
    QTest::newRow("null") << QByteArray(R"({"text":"hi","remainingSeconds":null})") << Seconds(60);
    QTest::newRow("overdrawn") << QByteArray(R"({"text":"hi","remainingSeconds":-5})") << Seconds(0);
    // An odd count costs nobody their words.
    QTest::newRow("a fraction") << QByteArray(R"({"text":"hi","remainingSeconds":12.5})") << Seconds(60);
    QTest::newRow("beyond 64 bits") << QByteArray(R"({"text":"hi","remainingSeconds":1e300})") << Seconds(60);
    QTest::newRow("text") << QByteArray(R"({"text":"hi","remainingSeconds":"5"})") << Seconds(60);
}

void ServiceTest::keepsAccountOfTheTimeLeft()
{
    QFETCH(QByteArray, body);
    m->account.setRemainingSeconds(60);
    m->http().willAnswer(200, body);
    m->transcribe();
    QCOMPARE(m->outcome(), u"hi"_s);
    QTEST(m->account.remainingSeconds(), "remaining");
}

QTEST_GUILESS_MAIN(ServiceTest)
#include "ServiceTest.moc"
