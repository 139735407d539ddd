#include "cloud/account/AccountFixture.h"
#include "cloud/account/Credentials.h"
#include "cloud/labs/LabsAnswerMode.h"
#include "cloud/labs/LabsClient.h"
#include "cloud/labs/LabsSession.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// A computer that is signed in to the service.
struct Fixture : AccountFixture
{
    Fixture() { signIn(u"svs_1"_s); }

    void load(const QByteArray &providers = R"({"claude":true,"chatgpt":true})")
    {
        machine.http.willAnswer(200, providers);
        session->loadProviders();
    }
    void ask(const QString &prompt, LabsProvider provider = LabsProvider::claude)
    {
        session->setPrompt(prompt);
        session->ask(provider);
    }
    /// Answer mode is off, and nothing stored.
    bool isOver() const { return !mode->enabled() && !machine.defaults.values.contains(u"labsAnswerModeExpiresAt"_s); }
    /// How many minutes answer mode stays on.
    int minutesOn()
    {
        int minutes = 0;
        for (; mode->enabled() && minutes < 100; ++minutes)
            machine.clock.advance(1min);
        return isOver() ? minutes : -1;
    }

    Credentials credentials{keychain, sessions};
    LabsClient labs{client, credentials};
    std::unique_ptr<LabsSession> session =
        std::make_unique<LabsSession>(LabsSession::Collaborators{labs, account, prefs, machine.clock});
    std::unique_ptr<LabsAnswerMode> mode = std::make_unique<LabsAnswerMode>(prefs, machine.clock);
};

} // namespace

class LabsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void offersWhatTheServiceOffers();
    void followsWhoIsSignedInWhere();
    void sendsTheQuestion();
    void keepsTheLastFiveAnswers();
    void triesAgainOnce();
    void answerModeEndsAfterHalfAnHour();
    void answerModeSurvivesARestart();
    void answerModeSeesAClockThatJumps();

private:
    std::unique_ptr<Fixture> m;
};

void LabsTest::offersWhatTheServiceOffers()
{
    const auto offered = [this](const QByteArray &body) {
        m->load(body);
        m->ask(u" \n"_s); // nothing to ask
        return m->session->property("availableProviders").toStringList().join(u',') + m->session->providersError() +
               (m->session->busy() ? u" asks"_s : QString());
    };
    QCOMPARE(offered(R"({"chatgpt":true,"claude":true})"), u"claude,chatgpt"_s);
    QCOMPARE(offered(R"({"claude":false,"chatgpt":true})"), u"chatgpt"_s);
    QCOMPARE(offered(R"({"claude":true})"), u"Sayvane sent something this app could not read."_s);
    QCOMPARE(offered(R"({"claude":false,"chatgpt":false})"), u"Labs is not offered on this server right now."_s);
    m->ask(u"x"_s); // nobody to ask
    QVERIFY(!m->session->busy());
}

void LabsTest::followsWhoIsSignedInWhere()
{
    const QByteArray both = R"({"claude":true,"chatgpt":true})";
    const auto offered = [this] { return m->session->property("availableProviders").toStringList().join(u','); };
    const auto signOut = [this] {
        m->sessions.clear();
        m->account.signOut();
    };
    // Whoever never opened the screen asks nobody.
    signOut();
    m->signIn(u"svs_1"_s);
    QVERIFY(m->machine.http.requests.isEmpty());
    // Opened before signing in, it comes to life.
    signOut();
    m->session->setDidLoadProviders(true);
    m->session->loadProviders();
    QCOMPARE(m->session->providersError(), u"Sign in under Settings to start dictating"_s);
    m->signIn(u"svs_2"_s);
    QCOMPARE(m->sent(), u"GET /v1/labs/providers svs_2 "_s);
    m->machine.http.answer(200, both);
    QCOMPARE(offered() + m->session->providersError(), u"claude,chatgpt"_s);

    // Another service is asked at once, and the one from before no more.
    m->prefs.accountBaseURL.set(u"https://slow.test"_s);
    QCOMPARE(offered(), QString());
    m->prefs.accountBaseURL.set(u"https://other.test"_s);
    QVERIFY(m->machine.http.waiting() == 1 && m->session->loadingProviders());
    QCOMPARE(m->machine.http.requests.last().url.host(), u"other.test"_s);
    m->machine.http.answer(200, R"({"claude":false,"chatgpt":true})");
    QCOMPARE(offered(), u"chatgpt"_s);

    // Signing out leaves nothing behind, nor does a question that is under way.
    m->session->setContext(u"their letter"_s);
    m->ask(u"first"_s);
    m->machine.http.answer(200, R"({"text":"answer"})");
    m->ask(u"second"_s);
    signOut();
    QVERIFY(m->machine.http.waiting() == 0 && !m->session->busy() && !m->session->loadingProviders());
    QCOMPARE(m->session->prompt() + m->session->context() + m->session->error() + offered(), QString());
    QVERIFY(!m->session->answer() && m->session->history().isEmpty());

    // A session that the question itself shows to be over is told.
    m->machine.http.willAnswer(200, both);
    m->signIn(u"svs_3"_s);
    m->ask(u"third"_s);
    m->machine.http.answer(401, {});
    QVERIFY(!m->account.signedIn() && !m->session->busy() && m->session->prompt().isEmpty());
    QCOMPARE(m->session->error(), u"Signed out. Sign in again in Settings."_s);
    QCOMPARE(m->session->providersError(), u"Sign in under Settings to start dictating"_s);
}

void LabsTest::sendsTheQuestion()
{
    m->load();
    m->session->setContext(u" \n"_s);
    m->ask(u" what? "_s);
    QCOMPARE(m->sent(), uR"(POST /v1/labs/answer svs_1 {"mode":"answer","prompt":" what? ","provider":"claude"})"_s);
    QCOMPARE(m->machine.http.requests.last().timeout, 45s);
    m->machine.http.answer(200, R"({"text":" \n"})");
    QCOMPARE(m->session->error(), u"Sayvane sent an empty answer back."_s);
    m->prefs.language.set(u" gu "_s);
    m->session->setProperty("mode", u"rewrite"_s);
    m->session->setProperty("mode", u"sing"_s); // unknown: nothing changes
    m->session->setContext(u" "_s + u"é"_s.repeated(5000));
    m->ask(u"🙂"_s.repeated(9000), LabsProvider::chatgpt);
    const QString body = uR"({"context":"%1","language":"gu","mode":"rewrite","prompt":"%2","provider":"chatgpt"})"_s;
    QVERIFY(m->sent().endsWith(body.arg(u"é"_s.repeated(4000), u"🙂"_s.repeated(8000))));
}

void LabsTest::keepsTheLastFiveAnswers()
{
    m->load();
    for (int i = 1; i <= 6; ++i) {
        m->ask(u"q%1"_s.arg(i));
        m->ask(u"q%1"_s.arg(i)); // not while one is asked
        m->machine.http.answer(200, u"{\"text\":\" a%1\\n\",\"model\":\"m\",\"inputTokens\":7}"_s.arg(i).toUtf8());
    }
    QCOMPARE(m->machine.http.requests.size(), 7);
    const LabsAnswer last{.text = u"a6"_s, .provider = u"claude"_s, .model = u"m"_s, .inputTokens = 7};
    const QList<LabsHistoryItem> &history = m->session->history();
    QCOMPARE(history.size(), 5);
    QCOMPARE(history.first().prompt + history.first().text + history.last().prompt, u"q6a6q2"_s);
    QVERIFY(history.first().date == m->machine.clock.now() && history.first().id != history.last().id);
    m->ask(u"q7"_s);
    m->machine.http.answer(200, R"({"text":"x","inputTokens":"7"})");
    QCOMPARE(m->session->error(), u"Sayvane sent something this app could not read."_s);
    m->ask(u"q8"_s);
    QVERIFY(m->session->error().isEmpty() && m->session->answer() == last && history.size() == 5);
}

void LabsTest::triesAgainOnce()
{
    const auto delay = [](int status, const QString &code, std::optional<qint64> retryAfter) {
        return LabsClient::retryDelay(status, code, retryAfter).value_or(0ms);
    };
    QCOMPARE(delay(429, u"rate_limited"_s, 30), 10s);
    QCOMPARE(delay(429, u"upstream_rate_limited"_s, 3), 3s);
    QCOMPARE(delay(429, u"rate_limited"_s, 0), 1500ms);
    QCOMPARE(delay(504, u"upstream_timeout"_s, {}), 1500ms);
    QCOMPARE(delay(429, u"quota_exceeded"_s, 1), 0s);
    QCOMPARE(delay(504, {}, 1), 0s);
    QCOMPARE(delay(502, u"upstream_timeout"_s, 1), 0s);
    m->load();
    m->ask(u"q"_s);
    const HttpResponse refusal{429, {{"Retry-After", "2.1"}}, R"({"error":{"code":" Rate_limited"}})"};
    m->machine.http.answer(refusal);
    m->machine.clock.advance(2999ms);
    QCOMPARE(m->machine.http.waiting(), 0);
    m->machine.clock.advance(1ms);
    m->machine.http.answer(refusal);
    QVERIFY(!m->session->busy() && m->machine.clock.pendingTimers() == 0);
    QCOMPARE(m->session->error(), u"Too many requests just now. Try again in a moment."_s);
    // Leaving ends the wait without a second try.
    m->ask(u"q"_s);
    m->session->loadProviders();
    m->machine.http.answer(refusal);
    m->session.reset();
    QVERIFY(m->machine.http.waiting() == 0 && m->machine.clock.pendingTimers() == 0);
    QCOMPARE(m->machine.http.requests.size(), 5);
}

void LabsTest::answerModeEndsAfterHalfAnHour()
{
    QSignalSpy changes(m->mode.get(), &LabsAnswerMode::enabledChanged);
    m->machine.clock.jumpTo(QDateTime(QDate(2001, 1, 2), QTime(0, 0), Qt::UTC));
    m->mode->setEnabled(true);
    QCOMPARE(m->machine.defaults.value(u"labsAnswerModeExpiresAt"_s).toDouble(), 86400.0 + 1800.0);
    m->machine.clock.advance(10min);
    m->mode->setEnabled(true); // renews nothing
    m->machine.clock.advance(20min - 1ms);
    QVERIFY(m->mode->enabled());
    m->machine.clock.advance(1ms);
    QVERIFY(m->isOver() && changes.size() == 2);
    // Off and on again is a new half hour.
    m->mode->setEnabled(true);
    m->machine.clock.advance(10min);
    m->mode->setEnabled(false);
    QVERIFY(m->isOver() && m->machine.clock.pendingTimers() == 0);
    m->mode->setEnabled(true);
    m->machine.clock.advance(30min - 1ms);
    QVERIFY(m->mode->enabled());
}

void LabsTest::answerModeSurvivesARestart()
{
    const auto minutesWith = [this](const QJsonValue &stored) {
        m->machine.defaults.values.insert(u"labsAnswerModeExpiresAt"_s, stored);
        m->mode = std::make_unique<LabsAnswerMode>(m->prefs, m->machine.clock);
        return m->minutesOn();
    };
    m->machine.clock.jumpTo(QDateTime(QDate(2001, 1, 2), QTime(0, 0), Qt::UTC));
    QCOMPARE(minutesWith(86400 + 600), 10);
    m->machine.clock.jumpTo(QDateTime(QDate(2001, 1, 2), QTime(0, 0), Qt::UTC));
    QCOMPARE(minutesWith(86400 - 60), 0);
    QCOMPARE(minutesWith(86400), 0);
    QCOMPARE(minutesWith(u"99999999999"_s), 0);
    QCOMPARE(minutesWith(1e300), 30); // never longer
}

void LabsTest::answerModeSeesAClockThatJumps()
{
    const auto minutesAfter = [this](int jumpMinutes) {
        m->mode->setEnabled(true);
        m->machine.clock.advance(10min);
        m->machine.clock.jumpTo(m->machine.clock.now().addSecs(60 * jumpMinutes));
        return m->minutesOn();
    };
    QCOMPARE(minutesAfter(5), 15);
    QCOMPARE(minutesAfter(600), 1); // as after sleep
    QCOMPARE(minutesAfter(-60), 20);
}

QTEST_GUILESS_MAIN(LabsTest)
#include "LabsTest.moc"
