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

    void anAnswerIsPasted();
    void aFailurePastesTheTranscript_data();
    void aFailurePastesTheTranscript();
    void aSessionRevokedMeanwhile_data();
    void aSessionRevokedMeanwhile();
    void othersAreNotAsked();
    void leavingWhileAnswering();

private:
    Dictation record() { return m->host().history().records().value(0); }

    std::unique_ptr<FlowFixture> m;
};

void AnswerModeTest::anAnswerIsPasted()
{
    for (const QString &stored : {u"ChatGPT"_s, u"chatgpt"_s}) {
        m->machine.defaults.values.insert(u"labsProvider"_s, stored);
        m->machine.defaults.values.insert(u"language"_s, u"en"_s);
        m->dictate(u"um what is the highest mountain"_s, u"What is the highest mountain?"_s);
        QCOMPARE(m->overlayModel().message(), u"Answering…"_s);
        QCOMPARE(m->overlayModel().tone(), OverlayTone::warning);
        QCOMPARE(QJsonDocument::fromJson(m->machine.http.requests.last().body).object(),
                 (QJsonObject{{u"prompt"_s, u"What is the highest mountain?"_s},
                              {u"provider"_s, stored == u"chatgpt"_s ? u"chatgpt"_s : u"claude"_s},
                              {u"mode"_s, u"answer"_s},
                              {u"language"_s, u"en"_s}}));
        m->machine.clock.advance(10s);
        QVERIFY(m->overlay().isVisible() && m->flow().state() == FlowState::processing);
        m->answerText(u" Mount Everest.\n"_s);
        QCOMPARE(m->overlayModel().message(), std::nullopt);
        m->finishPaste();
        QCOMPARE(m->machine.keyPoster.clipboardWhenPosted.last(), u"Mount Everest."_s);
        QCOMPARE(m->flow().lastError(), std::nullopt);
        QCOMPARE(record().text, u"Mount Everest."_s);
        QCOMPARE(record().rawText, u"um what is the highest mountain"_s);
        QVERIFY(record().wordCount == 2 && record().cleanupMs == 0 && !record().chatModel);
    }
}

void AnswerModeTest::aFailurePastesTheTranscript_data()
{
    QTest::addColumn<int>("cleanup");
    QTest::addColumn<int>("status"); // 0: no answer at all
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("pasted");
    QTest::addColumn<QString>("notice");
    const auto row = [](const char *name, int cleanup, int status, const QByteArray &body, const QString &pasted,
                        const QString &notice) {
        QTest::newRow(name) << cleanup << status << body << pasted << notice;
    };
    const QString failed = u"Pasted transcript. Answer mode failed: "_s;
    row("blank answer", 200, 200, R"({"text":" "})", u"One, two."_s, failed + u"Sayvane sent an empty answer back."_s);
    row("no network", 200, 0, {}, u"One, two."_s,
        failed + u"Could not reach Sayvane. Check the network and try again."_s);
    row("a long sentence", 200, 400, R"({"error":{"message":")" + QByteArray("x\\n").repeated(100) + R"("}})",
        u"One, two."_s, failed + u"x "_s.repeated(44) + u"x…"_s);
    row("the cleanup failed too", 500, 400, R"({"error":{"message":"No."}})", u"one two three four"_s,
        failed + u"No."_s);
    row("the cleanup alone failed", 500, 200, R"({"text":"Yes."})", u"Yes."_s,
        u"Pasted raw transcript. Cleanup failed: Sayvane: HTTP 500"_s);
}

void AnswerModeTest::aFailurePastesTheTranscript()
{
    QFETCH(int, cleanup);
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    QFETCH(QString, pasted);
    m->speak();
    m->answerText(u"one two three four"_s);
    m->machine.http.answer(cleanup, cleanup == 200 ? R"({"text":"One, two."})" : "");
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

void AnswerModeTest::othersAreNotAsked()
{
    QString captured;
    m->flow().captureNextTranscript([&](const QString &text) { captured = text; });
    m->machine.clock.advance(2s);
    m->flow().finishRecording(false);
    m->answerText(u"captured"_s);
    QCOMPARE(captured, u"captured"_s);
    m->machine.secrets.items.insert(u"groq_api_key"_s, "gsk_1");
    m->machine.defaults.values.insert(u"provider"_s, u"groq"_s);
    m->dictate(u"own key"_s, {});
    m->finishPaste();
    m->machine.defaults.values.insert(u"provider"_s, u"sayvane"_s);
    m->machine.clock.advance(30min);
    m->dictate(u"too late"_s, {});
    m->finishPaste();
    QCOMPARE(m->machine.keyPoster.clipboardWhenPosted, (QStringList{u"own key"_s, u"too late"_s}));
    QCOMPARE(m->machine.http.requests.size(), 3);
}

void AnswerModeTest::leavingWhileAnswering()
{
    m->speak();
    m->answerText(u"hello"_s);
    m->machine.http.answer(429, R"({"error":{"code":"rate_limited"}})"); // and waits to try again
    m->quit();
    QVERIFY(m->machine.folders.recordings().isEmpty() && m->machine.clock.pendingTimers() == 0);
    QVERIFY(m->host().answerMode().enabled()); // the next start goes on
}

QTEST_GUILESS_MAIN(AnswerModeTest)
#include "AnswerModeTest.moc"
