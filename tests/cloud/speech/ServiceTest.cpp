#include "cloud/speech/SpeechFixture.h"

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
    void lateNewsOfASessionChangesNoOther();
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
    row("429 of another code", 429, "quota_exceeded", "1", -1);
    row("429 rate limited", 429, "rate_limited", {}, 1500);
    row("429 upstream, odd form", 429, " UPSTREAM_rate_limited\\n", {}, 1500);
    row("truncated to milliseconds", 502, {}, "1.2349", 1234);
    row("an exponent", 502, {}, "1e-1", 100);
    row("just below the longest", 502, {}, "4.999", 4999);
    row("beyond all numbers", 502, {}, "1e999", 5000);
    row("nothing", 502, {}, "0", 1500);
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
    row("quota decides over 401", 401, R"({"error":{"code":"quota_exceeded"}})", usedUp);
    row("busy elsewhere", 503, R"({"error":{"code":"upstream_rate_limited"}})", busy);
    row("unauthorized", 400, R"({"error":{"code":"Unauthorized"}})", signedOut);
    row("invalid token", 403, R"({"error":{"code":"invalid_token","message":"m"}})", signedOut);
    row("429, nothing left", 429, R"({"remainingSeconds":0})", usedUp, 0);
    row("429, something left", 429, R"({"remainingSeconds":30})", u"Sayvane: HTTP 429"_s, 30);
    row("429, overdrawn", 429, R"({"remainingSeconds":-5})", u"Sayvane: HTTP 429"_s, 0);
    row("429, a fraction", 429, R"({"error":{"message":"m"},"remainingSeconds":0.5})", u"Sayvane: HTTP 429"_s);
    row("429, a message", 429, R"({"error":{"message":" Slow. "},"remainingSeconds":9})", u"Sayvane:  Slow. "_s, 9);
    row("a message without end", 400, "{\"error\":{\"message\":\"" + QByteArray(2'000'000, 'x') + "\"}}",
        u"Sayvane: "_s + QString(1000, u'x') + u'…');
    row("403", 403, R"({"error":{"code":"x","message":"m"}})",
        u"Sayvane: this account cannot be used. Please get in touch."_s);
    row("a code", 400, R"({"error":{"code":" Bad_Audio "}})", u"Sayvane: bad_audio"_s);
    row("a message of a wrong type", 400, R"({"error":{"code":"quota_exceeded","message":5}})", u"Sayvane: HTTP 400"_s);
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

void ServiceTest::lateNewsOfASessionChangesNoOther()
{
    QSignalSpy rejections(&m->account, &AccountStatus::sessionRejected);
    const QByteArray news = R"({"text":"hi","error":{"message":"Late."},"remainingSeconds":5})";
    for (const bool isNewer : {false, true}) { // or there is none
        for (const QList<int> &statuses : {QList{200}, QList{401}, QList{502, 401}, QList{429}}) {
            m->sessions.save(u"svs_1"_s);
            m->transcribe();
            m->sessions.clear();
            m->account.signOut();
            if (isNewer) {
                m->sessions.save(u"svs_2"_s);
                m->account.adopt({.token = u"svs_2"_s, .email = u"a@b.test"_s, .expiresAt = {}});
            }
            for (const int status : statuses) {
                m->http().answer(status, news);
                m->machine.clock.advance(1500ms);
            }
            const QString outcome = m->outcome();
            QVERIFY2(outcome == u"hi" || outcome.startsWith(u"! Sayvane: "_s), qPrintable(outcome));
            QCOMPARE(m->sessions.token(), isNewer ? std::optional(u"svs_2"_s) : std::nullopt);
            QCOMPARE(m->account.signedIn(), isNewer);
            QCOMPARE(m->account.remainingSeconds(), std::nullopt);
        }
    }
    QCOMPARE(rejections.size(), 0);
}

void ServiceTest::keepsAccountOfTheTimeLeft()
{
    const auto remainingAfter = [this](const QByteArray &body) {
        m->account.setRemainingSeconds(60);
        m->http().willAnswer(200, body);
        m->transcribe();
        return m->outcome() == u"hi" ? m->account.remainingSeconds() : std::nullopt;
    };
    QCOMPARE(remainingAfter(R"({"text":"hi","seconds":2,"remainingSeconds":1798})"), 1798);
    QCOMPARE(remainingAfter(R"({"text":"hi"})"), 60);
    QCOMPARE(remainingAfter(R"({"text":"hi","remainingSeconds":-5})"), 0);
    // An odd count costs nobody their words.
    QCOMPARE(remainingAfter(R"({"text":"hi","remainingSeconds":12.5})"), 60);
}

QTEST_GUILESS_MAIN(ServiceTest)
#include "ServiceTest.moc"
