#include "app/FlowFixture.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class AnswerModeTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m = std::make_unique<FlowFixture>();
        m->host().answerMode().setEnabled(true);
    }
    void cleanup() { m.reset(); }

    void anAnswerIsPasted_data();
    void anAnswerIsPasted();
    void aFailurePastesTheTranscript_data();
    void aFailurePastesTheTranscript();
    void aSessionRevokedMeanwhile_data();
    void aSessionRevokedMeanwhile();
    void othersAreNotAsked_data();
    void othersAreNotAsked();
    void leavingWhileAnswering();

private:
    QJsonObject sent() const { return QJsonDocument::fromJson(m->machine.http.requests.last().body).object(); }
    Dictation record() { return m->host().history().records().value(0); }

    std::unique_ptr<FlowFixture> m;
};

void AnswerModeTest::anAnswerIsPasted_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("asked");
    QTest::newRow("none chosen") << QString() << u"claude"_s;
    QTest::newRow("chosen") << u"chatgpt"_s << u"chatgpt"_s;
    QTest::newRow("nearly chosen") << u"ChatGPT"_s << u"claude"_s;
}

void AnswerModeTest::anAnswerIsPasted()
{
    QFETCH(QString, stored);
    QFETCH(QString, asked);
    m->machine.defaults.values.insert(u"labsProvider"_s, stored);
    m->machine.defaults.values.insert(u"language"_s, u"en"_s);
    m->dictate(u"um what is the highest mountain"_s, u"What is the highest mountain?"_s);
    QCOMPARE(m->overlayModel().message(), u"Answering…"_s);
    QCOMPARE(m->overlayModel().tone(), OverlayTone::warning);
    QCOMPARE(sent(), (QJsonObject{{u"prompt"_s, u"What is the highest mountain?"_s},
                                  {u"provider"_s, asked},
                                  {u"mode"_s, u"answer"_s},
                                  {u"language"_s, u"en"_s}}));
    m->machine.clock.advance(10s);
    QVERIFY(m->overlay().isVisible() && m->flow().state() == FlowState::processing);
    m->answerText(u" Mount Everest.\n"_s);
    QCOMPARE(m->overlayModel().message(), std::nullopt);
    m->finishPaste();
    QCOMPARE(m->machine.keyPoster.clipboardWhenPosted, QStringList{u"Mount Everest."_s});
    QCOMPARE(m->flow().lastTranscript(), u"Mount Everest."_s);
    QCOMPARE(m->flow().lastError(), std::nullopt);
    QCOMPARE(record().text, u"Mount Everest."_s);
    QCOMPARE(record().rawText, u"um what is the highest mountain"_s);
    QCOMPARE(record().wordCount, 2);
    QVERIFY(record().cleanupMs == 0 && !record().chatModel);
    QCOMPARE(m->flow().state(), FlowState::idle);
    QVERIFY(m->machine.folders.recordings().isEmpty());
}

void AnswerModeTest::aFailurePastesTheTranscript_data()
{
    QTest::addColumn<int>("cleanupStatus");
    QTest::addColumn<int>("status"); // 0: no answer at all
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("pasted");
    QTest::addColumn<QString>("notice");
    const QString failed = u"Pasted transcript. Answer mode failed: "_s;
    const auto row = [](const char *name, int cleanup, int status, const QByteArray &body, const QString &pasted,
                        const QString &notice) {
        QTest::newRow(name) << cleanup << status << body << pasted << notice;
    };
    const QByteArray no = R"({"error":{"message":"No."}})";
    const QByteArray longest = R"({"error":{"message":")" + QByteArray("x\\n").repeated(100) + R"("}})";
    row("blank answer", 200, 200, R"({"text":" "})", u"One, two."_s, failed + u"Sayvane sent an empty answer back."_s);
    row("no network", 200, 0, {}, u"One, two."_s,
        failed + u"Could not reach Sayvane. Check the network and try again."_s);
    row("a long sentence", 200, 400, longest, u"One, two."_s, failed + u"x "_s.repeated(44) + u"x…"_s);
    row("the cleanup failed too", 500, 400, no, u"one two three four"_s, failed + u"No."_s);
    row("the cleanup alone failed", 500, 200, R"({"text":"Yes."})", u"Yes."_s,
        u"Pasted raw transcript. Cleanup failed: Sayvane: HTTP 500"_s);
}

void AnswerModeTest::aFailurePastesTheTranscript()
{
    QFETCH(int, cleanupStatus);
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    QFETCH(QString, pasted);
    m->speak();
    m->answerText(u"one two three four"_s);
    m->machine.http.answer(cleanupStatus, cleanupStatus == 200 ? R"({"text":"One, two."})" : "");
    m->machine.http.answer(status ? FakeTransport::Result(HttpResponse{status, {}, body})
                                  : std::unexpected(TransportError{}));
    QTEST(m->flow().lastError().value_or(QString()), "notice");
    QCOMPARE(m->overlayModel().message(), m->flow().lastError());
    QCOMPARE(m->overlayModel().tone(), OverlayTone::warning);
    m->finishPaste();
    QCOMPARE(m->machine.keyPoster.clipboardWhenPosted, QStringList{pasted});
    QCOMPARE(record().text, pasted);
    QVERIFY(m->flow().state() == FlowState::idle && m->host().answerMode().enabled());
}

void AnswerModeTest::aSessionRevokedMeanwhile_data()
{
    QTest::addColumn<int>("moment");
    QTest::addColumn<QString>("notice"); // what is left to be read in the end
    const QString failed = u"Pasted transcript. Answer mode failed: "_s;
    QTest::newRow("recording") << 0 << u"Sign in under Settings to start dictating"_s;
    QTest::newRow("transcribing") << 1 << u"Signed out. Sign in again in Settings."_s;
    QTest::newRow("cleaning up") << 2 << failed + u"Sign in under Settings to start dictating"_s;
    QTest::newRow("answering") << 3 << failed + u"Signed out. Sign in again in Settings."_s;
}

void AnswerModeTest::aSessionRevokedMeanwhile()
{
    QFETCH(int, moment);
    m->tapShortcut();
    m->machine.clock.advance(2s);
    if (moment == 0) {
        m->machine.http.willAnswer(401, {});
        m->host().signIn().loadDevices(); // the settings are open, and another device ended the session
        QCOMPARE(m->flow().state(), FlowState::recording);
        QCOMPARE(m->overlayModel().state(), FlowState::recording);
        QCOMPARE(m->flow().lastError(), u"Signed out. Sign in again in Settings."_s);
    }
    m->tapShortcut();
    for (int step = 1; m->machine.http.waiting() > 0; ++step)
        step == moment ? m->machine.http.answer(401, {}) : m->answerText(u"one two three four"_s);
    m->finishPaste();
    QTEST(m->flow().lastError().value_or(QString()), "notice");
    QVERIFY(!m->host().account().signedIn() && m->machine.secrets.items.isEmpty());
    QCOMPARE(m->host().history().records().size(), moment < 2 ? 0 : 1); // what was transcribed is kept
    QCOMPARE(m->machine.keyPoster.posted.size(), moment < 2 ? 0 : 1);
    QCOMPARE(m->flow().state(), FlowState::idle);
}

void AnswerModeTest::othersAreNotAsked_data()
{
    QTest::addColumn<int>("scene");
    QTest::newRow("a provider of the user's own") << 0;
    QTest::newRow("a captured transcript") << 1;
    QTest::newRow("half an hour later") << 2;
}

void AnswerModeTest::othersAreNotAsked()
{
    QFETCH(int, scene);
    QString captured;
    m->machine.secrets.items.insert(u"groq_api_key"_s, "gsk_1");
    if (scene == 0)
        m->machine.defaults.values.insert(u"provider"_s, u"groq"_s);
    if (scene == 2)
        m->machine.clock.advance(30min);
    if (scene == 1) {
        m->flow().captureNextTranscript([&](const QString &text) { captured = text; });
        m->machine.clock.advance(2s);
        m->flow().finishRecording(false);
    } else {
        m->speak();
    }
    m->answerText(u"just text"_s);
    m->finishPaste();
    QCOMPARE(m->machine.http.requests.size(), 1);
    QCOMPARE(scene == 1 ? captured : m->machine.keyPoster.clipboardWhenPosted.value(0), u"just text"_s);
}

void AnswerModeTest::leavingWhileAnswering()
{
    m->speak();
    m->answerText(u"hello"_s);
    QCOMPARE(m->overlayModel().message(), u"Answering…"_s);
    m->machine.http.answer(429, R"({"error":{"code":"rate_limited"}})"); // and waits to try again
    m->quit();
    QVERIFY(m->machine.folders.recordings().isEmpty());
    QCOMPARE(m->machine.clock.pendingTimers(), 0U);
    QVERIFY(m->host().answerMode().enabled()); // the next start goes on
}

QTEST_GUILESS_MAIN(AnswerModeTest)
#include "AnswerModeTest.moc"
