#include "labs/LabsSession.h"

#include "account/AccountSessionStore.h"
#include "account/AccountStatus.h"
#include "account/Credentials.h"
#include "labs/LabsClient.h"
#include "settings/Defaults.h"
#include "settings/Keychain.h"
#include "settings/Prefs.h"
#include "support/FakeMachine.h"

#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// A computer that is signed in to a service with both assistants.
struct Fixture
{
    Fixture() { sessions.save(u"svs_1"_s); }

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
    QJsonObject sent() const { return QJsonDocument::fromJson(machine.http.requests.last().body).object(); }

    FakeMachine machine;
    Defaults defaults{machine.defaults};
    Prefs prefs{defaults, u"https://service.test"_s};
    Keychain keychain{machine.secrets};
    AccountSessionStore sessions{keychain};
    AccountStatus account{sessions, prefs};
    Credentials credentials{keychain, sessions};
    AccountClient accountClient{{prefs, sessions, account, machine.http, machine.clock}};
    LabsClient client{accountClient, credentials, machine.http, machine.clock};
    std::unique_ptr<LabsSession> session = std::make_unique<LabsSession>(client, prefs, machine.clock);
};

} // namespace

class LabsSessionTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<Fixture>(); }
    void cleanup() { m.reset(); }

    void offersWhatTheServiceOffers_data();
    void offersWhatTheServiceOffers();
    void sendsTheQuestion();
    void keepsTheLastFiveAnswers();
    void explainsAFailure_data();
    void explainsAFailure();
    void triesAgainOnce_data();
    void triesAgainOnce();
    void asksOnlyWhenItCan();
    void aRejectedSessionSignsOut();
    void leavingEndsTheWait();

private:
    std::unique_ptr<Fixture> m;
};

void LabsSessionTest::offersWhatTheServiceOffers_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("offered"); // or the error
    const QString none = u"Labs is not offered on this server right now."_s;
    const QString unreadable = u"Sayvane sent something this app could not read."_s;
    QTest::newRow("both") << QByteArray(R"({"chatgpt":true,"claude":true})") << u"claude,chatgpt"_s;
    QTest::newRow("one") << QByteArray(R"({"claude":false,"chatgpt":true})") << u"chatgpt"_s;
    QTest::newRow("neither") << QByteArray(R"({"claude":false,"chatgpt":false})") << none;
    QTest::newRow("one is missing") << QByteArray(R"({"claude":true})") << unreadable;
    QTest::newRow("a wrong type") << QByteArray(R"({"claude":true,"chatgpt":1})") << unreadable;
}

void LabsSessionTest::offersWhatTheServiceOffers()
{
    QFETCH(QByteArray, body);
    m->load();
    m->session->loadProviders();
    QVERIFY(m->session->loadingProviders());
    m->machine.http.answer(200, body);
    const QString offered = m->session->property("availableProviders").toStringList().join(u',');
    QTEST(offered + m->session->providersError(), "offered");
    m->session->setPrompt(u"x"_s);
    QCOMPARE(m->session->canAsk(), !offered.isEmpty());
    QVERIFY(!m->session->loadingProviders());
}

void LabsSessionTest::sendsTheQuestion()
{
    m->load();
    const HttpRequest listing = m->machine.http.requests.first();
    QCOMPARE(listing.url.path(), u"/v1/labs/providers"_s);
    m->session->setContext(u" \n"_s);
    m->ask(u" what? "_s);
    QCOMPARE(m->sent(),
             (QJsonObject{{u"prompt"_s, u" what? "_s}, {u"provider"_s, u"claude"_s}, {u"mode"_s, u"answer"_s}}));
    const HttpRequest request = m->machine.http.requests.last();
    QCOMPARE(request.url.toString(), u"https://service.test/v1/labs/answer"_s);
    QVERIFY(request.headers.contains(std::pair<QByteArray, QByteArray>("Authorization", "Bearer svs_1")));
    QVERIFY(listing.timeout == 45s && request.timeout == 45s);
    m->machine.http.answer(200, R"({"text":"x"})");
    m->defaults.set(u"language"_s, u" gu "_s);
    QVERIFY(m->session->setProperty("mode", u"rewrite"_s) && m->session->mode() == LabsMode::rewrite);
    m->session->setProperty("mode", u"sing"_s); // unknown: nothing changes
    m->session->setContext(u" "_s + u"é"_s.repeated(5000));
    m->ask(u"🙂"_s.repeated(9000), LabsProvider::chatgpt);
    QCOMPARE(m->sent(), (QJsonObject{{u"prompt"_s, u"🙂"_s.repeated(8000)},
                                     {u"provider"_s, u"chatgpt"_s},
                                     {u"mode"_s, u"rewrite"_s},
                                     {u"language"_s, u"gu"_s},
                                     {u"context"_s, u"é"_s.repeated(4000)}}));
}

void LabsSessionTest::keepsTheLastFiveAnswers()
{
    m->load();
    QSignalSpy histories(m->session.get(), &LabsSession::historyChanged);
    for (int i = 1; i <= 6; ++i) {
        m->ask(u"q%1"_s.arg(i));
        QVERIFY(m->session->busy());
        m->machine.http.answer(200, u"{\"text\":\" a%1\\n\",\"model\":\"m\",\"inputTokens\":7}"_s.arg(i).toUtf8());
    }
    const LabsAnswer last{.text = u"a6"_s, .provider = u"claude"_s, .model = u"m"_s, .inputTokens = 7};
    QCOMPARE(m->session->answer(), last);
    const QList<LabsHistoryItem> &history = m->session->history();
    QCOMPARE(history.size(), 5);
    QCOMPARE(history.first().prompt + history.first().text + history.last().prompt, u"q6a6q2"_s);
    QCOMPARE(history.first().date, m->machine.clock.now());
    QVERIFY(history.first().id != history.last().id);
    QCOMPARE(histories.size(), 6);
    QCOMPARE(m->session->prompt(), u"q6"_s); // what was typed stays
    m->ask(u"q7"_s);
    m->machine.http.answer(500, {});
    QVERIFY(m->session->answer() == last && m->session->history().size() == 5);
    m->ask(u"q8"_s);
    QVERIFY(m->session->error().isEmpty() && m->session->answer() == last);
}

void LabsSessionTest::explainsAFailure_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("blank") << 200 << QByteArray(R"({"text":" \n"})") << u"Sayvane sent an empty answer back."_s;
    QTest::newRow("no text") << 200 << QByteArray("{}") << u"Sayvane sent an empty answer back."_s;
    QTest::newRow("odd") << 200 << QByteArray(R"({"text":"x","inputTokens":"7"})")
                         << u"Sayvane sent something this app could not read."_s;
    QTest::newRow("refused") << 400 << QByteArray(R"({"error":{"code":"refused"}})") << u"That request was declined."_s;
}

void LabsSessionTest::explainsAFailure()
{
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    m->load();
    m->machine.http.willAnswer(status, body);
    m->ask(u"q"_s);
    QTEST(m->session->error(), "sentence");
    QVERIFY(!m->session->busy() && m->session->history().isEmpty());
}

void LabsSessionTest::triesAgainOnce_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("code");
    QTest::addColumn<QByteArray>("retryAfter");
    QTest::addColumn<int>("delayMs"); // -1: no second try
    const auto row = [](const char *name, int status, const QByteArray &code, const QByteArray &retryAfter,
                        int delayMs) { QTest::newRow(name) << status << code << retryAfter << delayMs; };
    row("rate limited", 429, "rate_limited", "30", 10000);
    row("a fraction", 429, " UPSTREAM_rate_limited", "2.1", 3000);
    row("no time", 429, "rate_limited", "", 1500);
    row("at once", 429, "rate_limited", "0", 1500);
    row("time-out", 504, "upstream_timeout", "1", 1000);
    row("429 without code", 429, "", "1", -1);
    row("time-out without code", 504, "", "1", -1);
    row("rate limit elsewhere", 503, "rate_limited", "1", -1);
    row("502", 502, "upstream_timeout", "", -1);
}

void LabsSessionTest::triesAgainOnce()
{
    QFETCH(int, status);
    QFETCH(QByteArray, code);
    QFETCH(QByteArray, retryAfter);
    QFETCH(int, delayMs);
    m->load();
    const HttpResponse refusal{status, {{"Retry-After", retryAfter}}, "{\"error\":{\"code\":\"" + code + "\"}}"};
    m->ask(u"q"_s);
    m->machine.http.answer(refusal);
    QCOMPARE(m->session->busy(), delayMs > 0);
    m->machine.clock.advance(std::chrono::milliseconds(delayMs - 1));
    QCOMPARE(m->machine.http.waiting(), 0);
    m->machine.clock.advance(1ms);
    QCOMPARE(m->machine.http.waiting(), delayMs > 0 ? 1 : 0);
    if (delayMs < 0)
        return;
    m->machine.http.answer(refusal);
    QVERIFY(!m->session->busy() && !m->session->error().isEmpty());
    QCOMPARE(m->machine.clock.pendingTimers(), 0U);
}

void LabsSessionTest::asksOnlyWhenItCan()
{
    m->ask(u"q"_s); // nobody to ask
    m->load();
    m->ask(u" \n"_s);
    m->session->setPrompt(u"q"_s);
    m->session->ask(u"gemini"_s);
    QCOMPARE(m->machine.http.requests.size(), 1);
    m->session->ask(u"chatgpt"_s);
    m->session->ask(u"claude"_s); // not while one is asked
    QCOMPARE(m->machine.http.requests.size(), 2);
}

void LabsSessionTest::aRejectedSessionSignsOut()
{
    m->load();
    m->machine.http.willAnswer(401, {});
    m->ask(u"q"_s);
    QCOMPARE(m->session->error(), u"Signed out. Sign in again in Settings."_s);
    QVERIFY(!m->account.signedIn() && !m->sessions.token());
    m->ask(u"q"_s);
    QCOMPARE(m->session->error(), u"Sign in under Settings to start dictating"_s);
    QCOMPARE(m->machine.http.requests.size(), 2);
}

void LabsSessionTest::leavingEndsTheWait()
{
    m->load();
    m->ask(u"q"_s);
    m->session->loadProviders();
    m->machine.http.answer(429, R"({"error":{"code":"rate_limited"}})");
    m->session.reset();
    QCOMPARE(m->machine.http.waiting(), 0);
    QCOMPARE(m->machine.clock.pendingTimers(), 0U);
    QCOMPARE(m->machine.http.requests.size(), 3); // and no second try
}

QTEST_GUILESS_MAIN(LabsSessionTest)
#include "LabsSessionTest.moc"
