#include "program/FlowFixture.h"

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
    void aFailurePastesTheTranscript();
    void aSessionRevokedMeanwhile();
    void othersAreNotAsked();
    void leavingWhileAnswering();

private:
    Dictation record() { return m->host().history().records().value(0); }

    std::unique_ptr<FlowFixture> m;
};

void AnswerModeTest::anAnswerIsPasted()
{
    for (const QString &stored : {u"ChatGPT"_s, u"chatgpt"_s, u"chatgpt, not offered"_s}) {
        if (stored.contains(u"not"_s)) {
            m->machine.http.willAnswer(200, R"({"claude":true,"chatgpt":false})");
            m->host().labs().loadProviders();
        }
        m->machine.defaults.values.insert(u"labsProvider"_s, stored.section(u',', 0, 0));
        m->machine.defaults.values.insert(u"language"_s, u"en"_s);
        m->dictate(u"um what is the highest mountain"_s, u"What is the highest mountain?"_s);
        QVERIFY(m->overlayModel().message() == u"Answering…" && m->overlayModel().tone() == OverlayTone::warning);
        const QString body =
            uR"({"language":"en","mode":"answer","prompt":"What is the highest mountain?","provider":"%1"})"_s;
        QCOMPARE(QString::fromUtf8(m->machine.http.requests.last().body),
                 body.arg(stored == u"chatgpt"_s ? u"chatgpt"_s : u"claude"_s));
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

void AnswerModeTest::aFailurePastesTheTranscript()
{
    using Result = FakeTransport::Result;
    const auto outcome = [this](int cleanup, const Result &reply) {
        m->speak();
        m->answerText(u"one two three four"_s);
        m->machine.http.answer(cleanup, cleanup == 200 ? R"({"text":"One, two."})" : "");
        m->machine.http.answer(reply);
        const QString notice = m->overlayModel().message().value_or(QString());
        const bool isWarning = m->overlayModel().tone() == OverlayTone::warning && m->flow().lastError() == notice;
        m->finishPaste();
        const QString pasted = m->machine.keyPoster.clipboardWhenPosted.last();
        return isWarning && pasted == record().text ? pasted + u" / "_s + notice : u"not told"_s;
    };
    const QString failed = u" / Pasted transcript. Answer mode failed: "_s;
    const HttpResponse no{400, {}, R"({"error":{"message":"No."}})"};
    const HttpResponse longest{400, {}, R"({"error":{"message":")" + QByteArray("x\\n").repeated(100) + R"("}})"};
    QCOMPARE(outcome(200, std::unexpected(TransportError{})),
             u"One, two."_s + failed + u"Could not reach Sayvane. Check the network and try again."_s);
    QCOMPARE(outcome(200, longest), u"One, two."_s + failed + u"x "_s.repeated(44) + u"x…"_s);
    QCOMPARE(outcome(500, no), u"one two three four"_s + failed + u"No."_s); // both failed: the later counts
    QCOMPARE(outcome(500, HttpResponse{200, {}, R"({"text":"Yes."})"}),
             u"Yes. / Pasted raw transcript. Cleanup failed: Sayvane: HTTP 500"_s);
}

void AnswerModeTest::aSessionRevokedMeanwhile()
{
    const QString failed = u"Pasted transcript. Answer mode failed: "_s;
    const QString signedOut = u"Signed out. Sign in again in Settings."_s;
    const QString nobody = u"Sign in under Settings to start dictating"_s;
    // Signing out ends answer mode.
    const QStringList notices{nobody, signedOut, u"Pasted raw transcript. Cleanup failed: "_s + signedOut,
                              failed + signedOut};
    for (int moment = 0; moment < notices.size(); ++moment) { // recording, transcribing, cleaning up, answering
        m->host().sessions().save(u"svs_2"_s);
        m->host().answerMode().setEnabled(true);
        m->tapShortcut();
        m->machine.clock.advance(2s);
        if (moment == 0) {
            m->machine.http.willAnswer(401, {});
            m->host().signIn().loadDevices(); // the settings are open, and another device ended the session
            QCOMPARE(m->overlayModel().state(), FlowState::recording);
            QCOMPARE(m->flow().lastError(), signedOut);
        }
        m->tapShortcut();
        for (int step = 1; m->machine.http.waiting() > 0; ++step)
            step == moment ? m->machine.http.answer(401, {}) : m->answerText(u"one two three four"_s);
        m->finishPaste();
        QCOMPARE(m->flow().lastError(), notices.at(moment));
        QVERIFY(!m->host().account().signedIn() && m->machine.secrets.items.isEmpty());
        QVERIFY(!m->host().answerMode().enabled());
        // What was transcribed is kept and pasted.
        QCOMPARE(m->machine.keyPoster.posted.size(), std::max(0, moment - 1));
        QCOMPARE(m->host().history().records().size(), std::max(0, moment - 1));
    }
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
    QVERIFY(m->machine.folders.recordings().size() == 1 && m->machine.clock.pendingTimers() == 0);
    QVERIFY(m->host().answerMode().enabled()); // the next start goes on
    QVERIFY(m->host().history().records().isEmpty());
}

QTEST_GUILESS_MAIN(AnswerModeTest)
#include "AnswerModeTest.moc"
