#include "program/FlowFixture.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class FlowControllerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m = std::make_unique<FlowFixture>(); }
    void cleanup() { m.reset(); }

    void aTapBeginsARecording();
    void aDictationIsPastedStoredAndForgotten();
    void theRecordTellsHowItWasMade_data();
    void theRecordTellsHowItWasMade();
    void aShortRecordingLeavesNoTrace_data();
    void aShortRecordingLeavesNoTrace();
    void aClockThatIsSetBackLosesNothing();
    void aSmallFileIsNothingHeard_data();
    void aSmallFileIsNothingHeard();
    void aFileThatIsGoneIsNothingHeard();
    void aRecordingThatCannotStartSaysWhy_data();
    void aRecordingThatCannotStartSaysWhy();
    void escapeCancelsOnlyWhileRecording();
    void theLimitEndsTheRecording();
    void tapsWhileProcessingAreIgnored();
    void anEmptyTranscriptIsNothingHeard();
    void aFailedTranscriptionShowsItsSentence();
    void aFailedCleanupPastesTheRawTranscript();
    void aFailedPasteStillKeepsTheDictation();
    void aCaptureTakesTheTranscript();
    void aCaptureEndsWithAFailureOrACancel();
    void theMeterShowsTheLevel();
    void messagesStayForTheirTime();
    void theShortcutFollowsTheSetting();
    void theShortcutComesAndGoesWithTheTrust();
    void aRejectedSessionSignsOut();
    void signingOutWhileRecordingKeepsTheMeter();
    void soundsCanBeSwitchedOff();
    void theKeystrokeWaitsForTheDisk_data();
    void theKeystrokeWaitsForTheDisk();
    void aLossDeliversWhatWasHeard_data();
    void aLossDeliversWhatWasHeard();
    void aMicrophoneThatTakesItsTimeIsWaitedForByNobody();
    void whoLeavesIsHeardButNotTypedFor();
    void aFailedDictationIsKeptOnlyIfWanted_data();
    void aFailedDictationIsKeptOnlyIfWanted();
    void leavingInTheMiddleKeepsWhatIsNotSafeYet_data();
    void leavingInTheMiddleKeepsWhatIsNotSafeYet();
    void historyHoldsTheNewestFifty();
    void longAndForeignTextArrivesWhole_data();
    void longAndForeignTextArrivesWhole();

private:
    std::unique_ptr<FlowFixture> m;
};

void FlowControllerTest::aTapBeginsARecording()
{
    m->host();
    QCOMPARE(m->tapShortcut(), KeyVerdict::swallow);
    QCOMPARE(m->flow().state(), FlowState::recording);
    QVERIFY(m->overlay().isVisible());
    QCOMPARE(m->overlayModel().state(), FlowState::recording);
    QCOMPARE(m->machine.sounds.played, QStringList{u"Pop"_s});
    QCOMPARE(m->machine.http.warmUps.size(), 1);
    QVERIFY(m->flow().hotkey()->interceptEscape());
    QCOMPARE(m->machine.microphone.lastFormat.sampleRate, 16000U);
    QCOMPARE(m->machine.folders.recordings().size(), 1);
}

void FlowControllerTest::aDictationIsPastedStoredAndForgotten()
{
    m->machine.pasteboard.contents = {{{u"image/png"_s, "pixels"}, {u"text/html"_s, "<b>x</b>"}}};
    const auto before = m->machine.pasteboard.contents;
    m->host();
    m->speak();
    QCOMPARE(m->machine.pasteboard.asked, 1); // its owner delivers while the service works
    m->answerText(u" um hello there dear world \n"_s);
    m->answerText(u"Hello there, dear world."_s);
    QCOMPARE(m->machine.pasteboard.asked, 1);
    QCOMPARE(m->flow().state(), FlowState::processing);
    QCOMPARE(m->flow().lastTranscript(), u"Hello there, dear world."_s);
    QVERIFY(m->machine.keyPoster.posted.isEmpty());
    m->machine.clock.advance(49ms);
    QVERIFY(m->machine.keyPoster.posted.isEmpty());
    m->machine.clock.advance(1ms);
    QCOMPARE(m->machine.keyPoster.posted, (QList<KeyChord>{{9, KeyFlags::command}}));
    QCOMPARE(m->machine.keyPoster.clipboardWhenPosted, QStringList{u"Hello there, dear world."_s});
    m->machine.clock.advance(499ms);
    QCOMPARE(m->flow().state(), FlowState::processing);
    m->machine.clock.advance(1ms);
    QCOMPARE(m->flow().state(), FlowState::idle);
    QCOMPARE(m->machine.pasteboard.contents, before);
    QCOMPARE(m->machine.sounds.played, (QStringList{u"Pop"_s, u"Tink"_s}));
    QCOMPARE(m->flow().lastError(), std::nullopt);
    QCOMPARE(m->flow().history(), QStringList{u"Hello there, dear world."_s});
    QVERIFY(m->machine.folders.recordings().isEmpty());
}

void FlowControllerTest::theRecordTellsHowItWasMade_data()
{
    QTest::addColumn<QString>("provider");
    QTest::addColumn<bool>("cleanup");
    QTest::addColumn<QString>("transcript");
    QTest::addColumn<bool>("isTimed");
    QTest::addColumn<std::optional<QString>>("chatModel");
    QTest::addColumn<std::optional<QString>>("transcriptionModel");
    const auto none = std::optional<QString>();
    const auto chat = std::optional(u"gpt-4o-mini"_s);
    const auto speech = std::optional(u"gpt-4o-mini-transcribe"_s);
    QTest::newRow("own key, four words") << u"openai"_s << true << u"one two three four"_s << true << chat << speech;
    QTest::newRow("own key, three words") << u"openai"_s << true << u"one two three"_s << false << none << speech;
    QTest::newRow("own key, no cleanup") << u"openai"_s << false << u"one two three four"_s << false << none << speech;
    QTest::newRow("service, four words") << u"sayvane"_s << true << u"one two three four"_s << true << none << none;
    QTest::newRow("service, three words") << u"sayvane"_s << true << u"one two three"_s << false << none << none;
}

void FlowControllerTest::theRecordTellsHowItWasMade()
{
    QFETCH(QString, provider);
    QFETCH(bool, cleanup);
    QFETCH(QString, transcript);
    m->machine.defaults.values = {{u"provider"_s, provider}, {u"cleanupEnabled"_s, cleanup}};
    m->machine.secrets.items.insert(u"openai_api_key"_s, "sk-test");
    m->host();
    m->speak();
    m->machine.clock.advance(1234ms);
    m->answerText(transcript);
    if (m->machine.http.waiting() > 0) {
        m->machine.clock.advance(567ms);
        const QByteArray edited = R"({"text":"Edited text.","choices":[{"message":{"content":"Edited text."}}]})";
        m->machine.http.answer(200, edited);
    }
    QCOMPARE(m->host().history().records().size(), 1);
    const Dictation record = m->host().history().records().first();
    QFETCH(bool, isTimed);
    QCOMPARE(record.text, isTimed ? u"Edited text."_s : transcript);
    QCOMPARE(record.rawText, isTimed ? std::optional(transcript) : std::nullopt);
    QCOMPARE(record.wordCount, Dictation::wordCountOf(record.text));
    QCOMPARE(record.transcribeMs, 1234);
    QCOMPARE(record.cleanupMs, isTimed ? std::optional<qint64>(567) : std::nullopt);
    QCOMPARE(record.durationSeconds, 2.0);
    QCOMPARE(record.audioBytes, m->machine.microphone.fileSize);
    QCOMPARE(record.providerRaw, provider);
    QTEST(record.chatModel, "chatModel");
    QTEST(record.transcriptionModel, "transcriptionModel");
}

void FlowControllerTest::aShortRecordingLeavesNoTrace_data()
{
    QTest::addColumn<int>("milliseconds");
    QTest::addColumn<bool>("isKept");
    QTest::newRow("both taps before anything could run") << -1 << false;
    QTest::newRow("at once") << 0 << false;
    QTest::newRow("just under") << 399 << false;
    QTest::newRow("exactly the minimum") << 400 << false;
    QTest::newRow("just over") << 401 << true;
}

void FlowControllerTest::aShortRecordingLeavesNoTrace()
{
    QFETCH(int, milliseconds);
    QFETCH(bool, isKept);
    m->host();
    if (milliseconds >= 0) {
        m->tapShortcut();
        m->machine.clock.advance(std::chrono::milliseconds(milliseconds));
    } else {
        m->machine.keyTaps.send({KeyEventType::keyDown, 49, KeyFlags::fn, false});
    }
    m->tapShortcut();
    QCOMPARE(m->flow().state(), isKept ? FlowState::processing : FlowState::idle);
    QCOMPARE(m->overlay().isVisible(), isKept);
    QCOMPARE(m->machine.sounds.played.size(), isKept ? 2 : 1);
    QCOMPARE(m->machine.folders.recordings().size(), isKept ? 1 : 0);
    QCOMPARE(m->flow().lastError(), std::nullopt);
    QVERIFY(!m->flow().hotkey()->interceptEscape());
}

void FlowControllerTest::aClockThatIsSetBackLosesNothing()
{
    m->host();
    m->tapShortcut();
    m->machine.clock.advance(3s);
    m->machine.clock.jumpTo(m->machine.clock.now().addSecs(-3600));
    m->tapShortcut();
    m->answerText(u"still here"_s);
    QCOMPARE(m->host().history().records().first().durationSeconds, 3.0);
}

void FlowControllerTest::aSmallFileIsNothingHeard_data()
{
    QTest::addColumn<qint64>("size");
    QTest::addColumn<bool>("isSent");
    QTest::newRow("empty") << qint64(0) << false;
    QTest::newRow("the largest refused") << qint64(16000) << false;
    QTest::newRow("the smallest accepted") << qint64(16001) << true;
}

void FlowControllerTest::aSmallFileIsNothingHeard()
{
    QFETCH(bool, isSent);
    QFETCH(qint64, size);
    m->machine.microphone.fileSize = size;
    m->host();
    m->speak();
    QCOMPARE(m->machine.http.requests.size(), isSent ? 1 : 0);
    QCOMPARE(m->flow().lastError(), isSent ? std::nullopt : std::optional(u"Nothing heard"_s));
    QCOMPARE(m->machine.sounds.played.last(), isSent ? u"Tink"_s : u"Basso"_s);
    QCOMPARE(m->machine.folders.recordings().size(), isSent ? 1 : 0);
}

void FlowControllerTest::aFileThatIsGoneIsNothingHeard()
{
    m->machine.microphone.leavesNoFile = true;
    m->host();
    m->speak();
    QCOMPARE(m->flow().lastError(), u"Nothing heard"_s);
    QCOMPARE(m->flow().state(), FlowState::idle);
}

void FlowControllerTest::aRecordingThatCannotStartSaysWhy_data()
{
    using Break = void (*)(FakeMachine &);
    QTest::addColumn<Break>("breakIt");
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char *name, Break breakIt, const QString &sentence) {
        QTest::newRow(name) << breakIt << sentence;
    };
    row(
        "not allowed", [](FakeMachine &machine) { machine.microphone.authorized = Microphone::Authorization::denied; },
        u"Microphone access not granted. Check System Settings, Privacy, Microphone"_s);
    row(
        "no microphone", [](FakeMachine &machine) { machine.microphone.hasDevice = false; }, u"No microphone found"_s);
    row(
        "one byte too few", [](FakeMachine &machine) { machine.volumes.capacity = 52428799; },
        u"Not enough disk space to record. Free up 50 MB and try again"_s);
    row(
        "busy", [](FakeMachine &machine) { machine.microphone.records = false; },
        u"Microphone is busy or unavailable"_s);
    row(
        "no file", [](FakeMachine &machine) { machine.microphone.openError = u"The folder is gone."_s; },
        u"Couldn't start recording: The folder is gone."_s);
    row("just enough room", [](FakeMachine &machine) { machine.volumes.capacity = 52428800; }, {});
    row("room unknown", [](FakeMachine &machine) { machine.volumes.capacity.reset(); }, {});
}

void FlowControllerTest::aRecordingThatCannotStartSaysWhy()
{
    QFETCH(QString, sentence);
    using Break = void (*)(FakeMachine &);
    QFETCH(Break, breakIt);
    breakIt(m->machine);
    m->host();
    const int asked = m->machine.microphone.accessRequests;
    m->tapShortcut();
    const bool works = sentence.isEmpty();
    QCOMPARE(m->flow().state(), works ? FlowState::recording : FlowState::idle);
    QCOMPARE(m->machine.sounds.played, QStringList{works ? u"Pop"_s : u"Basso"_s});
    QCOMPARE(m->machine.folders.recordings().size(), works ? 1 : 0);
    if (works)
        return;
    QCOMPARE(m->flow().lastError(), sentence);
    QCOMPARE(m->overlayModel().message(), sentence);
    QCOMPARE(m->overlayModel().tone(), OverlayTone::failure);
    QCOMPARE(m->machine.microphone.accessRequests > asked, sentence.startsWith(u"Microphone access"_s));
}

void FlowControllerTest::escapeCancelsOnlyWhileRecording()
{
    m->host();
    QCOMPARE(m->tapEscape(), KeyVerdict::pass);
    m->tapShortcut();
    m->machine.clock.advance(3s);
    QCOMPARE(m->tapEscape(), KeyVerdict::swallow);
    QCOMPARE(m->flow().state(), FlowState::idle);
    QVERIFY(!m->overlay().isVisible());
    QCOMPARE(m->machine.sounds.played.last(), u"Funk"_s);
    QVERIFY(m->machine.folders.recordings().isEmpty());
    QVERIFY(m->machine.http.requests.isEmpty());
    m->speak();
    QCOMPARE(m->tapEscape(), KeyVerdict::pass);
    QCOMPARE(m->flow().state(), FlowState::processing);
}

void FlowControllerTest::theLimitEndsTheRecording()
{
    m->host();
    m->tapShortcut();
    m->machine.clock.advance(569999ms);
    QCOMPARE(m->flow().state(), FlowState::recording);
    m->machine.clock.advance(1ms);
    QCOMPARE(m->flow().state(), FlowState::processing);
    QCOMPARE(m->overlayModel().message(), u"Recording limit reached, transcribing"_s);
    QCOMPARE(m->overlayModel().tone(), OverlayTone::warning);
    m->answerText(u"done"_s);
    QCOMPARE(m->host().history().records().first().durationSeconds, 570.0);
    // The next recording has a limit of its own.
    m->finishPaste();
    m->tapShortcut();
    m->machine.clock.advance(569s);
    QCOMPARE(m->flow().state(), FlowState::recording);
}

void FlowControllerTest::tapsWhileProcessingAreIgnored()
{
    m->host();
    m->speak();
    for (int i = 0; i < 5; ++i)
        QCOMPARE(m->tapShortcut(), KeyVerdict::swallow);
    m->flow().beginRecording();
    m->flow().finishRecording(false);
    m->flow().cancelRecording();
    QCOMPARE(m->machine.http.requests.size(), 1);
    m->answerText(u"hello"_s);
    m->tapShortcut(); // between the answer and the paste
    m->finishPaste();
    QCOMPARE(m->flow().state(), FlowState::idle);
    QCOMPARE(m->machine.keyPoster.posted.size(), 1);
    QCOMPARE(m->host().history().records().size(), 1);
}

void FlowControllerTest::anEmptyTranscriptIsNothingHeard()
{
    m->host();
    m->speak();
    m->answerText(u" \n\t "_s);
    QCOMPARE(m->flow().lastError(), u"Nothing heard"_s);
    QVERIFY(m->host().history().records().isEmpty());
    QVERIFY(m->machine.folders.recordings().isEmpty());
}

void FlowControllerTest::aFailedTranscriptionShowsItsSentence()
{
    m->host();
    m->speak();
    m->machine.http.answer(std::unexpected(TransportError{TransportError::Kind::offline, u"There is no network."_s}));
    QCOMPARE(m->flow().state(), FlowState::idle);
    QCOMPARE(m->flow().lastError(), u"There is no network."_s);
    QCOMPARE(m->machine.sounds.played.last(), u"Basso"_s);
    QVERIFY(m->machine.folders.recordings().isEmpty());
    // A clean success clears it.
    m->dictate(u"hello"_s, {});
    QCOMPARE(m->flow().lastError(), std::nullopt);
}

void FlowControllerTest::aFailedCleanupPastesTheRawTranscript()
{
    m->host();
    m->speak();
    m->answerText(u"one two three four"_s);
    const QString reason = u"x\n"_s.repeated(100);
    m->machine.http.answer(500, QJsonDocument(QJsonObject{{u"error"_s, QJsonObject{{u"message"_s, reason}}}}).toJson());
    const QString detail = (u"Sayvane: "_s + u"x "_s.repeated(40)).trimmed() + u'…';
    QCOMPARE(detail.size(), 89); // the 89th character is a blank, which goes before the ellipsis
    QCOMPARE(m->flow().lastError(), u"Pasted raw transcript. Cleanup failed: "_s + detail);
    QCOMPARE(m->overlayModel().tone(), OverlayTone::warning);
    m->finishPaste();
    QCOMPARE(m->machine.keyPoster.clipboardWhenPosted, QStringList{u"one two three four"_s});
    const Dictation record = m->host().history().records().first();
    QCOMPARE(record.cleanupMs, std::nullopt);
    QCOMPARE(record.rawText, std::nullopt);
}

void FlowControllerTest::aFailedPasteStillKeepsTheDictation()
{
    m->host();
    m->machine.keyPoster.works = false;
    m->dictate(u"hello"_s, {});
    m->finishPaste();
    QCOMPARE(m->flow().lastError(), u"Copied to clipboard. Grant Accessibility to paste automatically."_s);
    QCOMPARE(m->overlayModel().tone(), OverlayTone::warning);
    QCOMPARE(m->machine.pasteboard.text(), u"hello"_s);

    m->machine.trust.trusted = false;
    m->machine.pasteboard.reachable = false;
    m->flow().toggle();
    m->machine.clock.advance(2s);
    m->flow().toggle();
    m->answerText(u"good bye"_s);
    QCOMPARE(m->flow().lastError(),
             u"Not copied: this desktop's clipboard is out of reach. Open Sayvane to copy the text."_s);
    QCOMPARE(m->machine.pasteboard.text(), u"hello"_s);
    QCOMPARE(m->host().history().records().size(), 2);
    QCOMPARE(m->flow().state(), FlowState::idle);
}

void FlowControllerTest::aCaptureTakesTheTranscript()
{
    m->host();
    QString captured;
    m->flow().captureNextTranscript([&](const QString &text) { captured = text; });
    m->machine.clock.advance(2s);
    m->flow().captureNextTranscript([&](const QString &) { QFAIL("a running recording was taken over"); });
    m->flow().finishRecording(false);
    m->answerText(u"what is this"_s);
    QCOMPARE(captured, u"what is this"_s);
    QCOMPARE(m->flow().state(), FlowState::idle);
    QCOMPARE(m->flow().lastTranscript(), captured);
    QVERIFY(m->host().history().records().isEmpty());
    QCOMPARE(m->machine.pasteboard.count, 1);
    QCOMPARE(m->machine.pasteboard.asked, 0);
    // It is taken once.
    m->dictate(u"next"_s, {});
    QCOMPARE(captured, u"what is this"_s);
    QCOMPARE(m->host().history().records().size(), 1);
}

void FlowControllerTest::aCaptureEndsWithAFailureOrACancel()
{
    m->host();
    int captures = 0;
    const auto capture = [&](const QString &) { ++captures; };
    m->flow().captureNextTranscript(capture);
    m->flow().cancelRecording();
    m->dictate(u"first"_s, {});
    m->finishPaste();
    m->flow().captureNextTranscript(capture);
    m->machine.clock.advance(2s);
    m->flow().finishRecording(false);
    m->answerText({});
    m->dictate(u"second"_s, {});
    m->finishPaste();
    QCOMPARE(captures, 0);
    QCOMPARE(m->host().history().records().size(), 2);
}

void FlowControllerTest::theMeterShowsTheLevel()
{
    m->host();
    m->tapShortcut();
    QCOMPARE(m->overlayModel().levels(), QList<double>(24, 0.0));
    m->machine.clock.advance(50ms);
    QCOMPARE(m->overlayModel().levels().last(), 0.5);
    m->machine.microphone.power = 6;
    m->machine.clock.advance(50ms);
    QCOMPARE(m->overlayModel().levels().last(), 1.0);
    m->machine.microphone.power = -std::numeric_limits<double>::infinity();
    m->machine.clock.advance(50ms);
    QCOMPARE(m->overlayModel().levels().last(), 0.0);
    m->machine.microphone.power = 0;
    m->machine.clock.advance(30 * 50ms);
    QCOMPARE(m->overlayModel().levels(), QList<double>(24, 1.0));
    m->tapShortcut();
    QCOMPARE(m->overlayModel().levels(), QList<double>(24, 0.0));
}

void FlowControllerTest::messagesStayForTheirTime()
{
    m->host();
    m->dictate(u"hello"_s, {});
    QCOMPARE(m->overlayModel().message(), std::nullopt);
    m->machine.clock.advance(899ms);
    QVERIFY(m->overlay().isVisible());
    m->machine.clock.advance(1ms);
    QVERIFY(!m->overlay().isVisible());
    m->speak();
    m->answerText({});
    m->machine.clock.advance(3400ms);
    QVERIFY(m->overlay().isVisible());
    // A recording that begins meanwhile keeps the overlay beyond the message's time.
    m->tapShortcut();
    m->machine.clock.advance(200ms);
    QVERIFY(m->overlay().isVisible());
    QCOMPARE(m->overlayModel().state(), FlowState::recording);
}

void FlowControllerTest::theShortcutFollowsTheSetting()
{
    m->machine.defaults.values.insert(u"hotkeySpec"_s, u"{}"_s);
    m->host();
    QCOMPARE(m->machine.keyTaps.watched, (QList<KeyChord>{{49, KeyFlags::fn}}));
    m->tapShortcut();
    const HotkeySpec f5{.keyCode = 96, .fn = false, .control = true};
    m->flow().updateHotkey(f5);
    QCOMPARE(m->machine.defaults.value(u"hotkeySpec"_s).toString(), f5.jsonString());
    QVERIFY(m->flow().hotkey()->interceptEscape());
    QCOMPARE(m->machine.keyTaps.watched, (QList<KeyChord>{{96, KeyFlags::control}, {53, 0}, {53, KeyFlags::fn}}));
    QCOMPARE(m->tapShortcut(), KeyVerdict::pass);
    m->machine.clock.advance(1s);
    QCOMPARE(m->machine.keyTaps.tap(96, KeyFlags::control), KeyVerdict::swallow);
    QCOMPARE(m->flow().state(), FlowState::processing);
    // The desktop's own settings gave it other keys.
    const auto told = m->machine.keyTaps.listener.lock();
    QVERIFY(told);
    (*told)({16, KeyFlags::fn});
    QCOMPARE(m->host().prefs().hotkeySpec(), (HotkeySpec{.keyCode = 16}));
    QCOMPARE(m->machine.keyTaps.watched.value(0), (KeyChord{16, KeyFlags::fn}));

    m->machine.keyTaps.allowsInstall = false;
    QTest::ignoreMessage(QtWarningMsg, "Sayvane: could not create event tap. Is Accessibility permission granted?");
    m->flow().updateHotkey({});
    QVERIFY(!m->flow().hotkeyActive());
}

void FlowControllerTest::theShortcutComesAndGoesWithTheTrust()
{
    m->machine.trust.trusted = false;
    m->machine.keyTaps.allowsInstall = false;
    QTest::ignoreMessage(QtWarningMsg, "Sayvane: could not create event tap. Is Accessibility permission granted?");
    QSignalSpy changes(&m->flow(), &FlowController::hotkeyActiveChanged);
    QVERIFY(!m->flow().hotkeyActive());
    m->machine.keyTaps.allowsInstall = true;
    m->machine.clock.advance(4s);
    QVERIFY(!m->flow().hotkeyActive());
    m->machine.trust.trusted = true;
    m->machine.clock.advance(2s);
    QVERIFY(m->flow().hotkeyActive());
    m->machine.trust.trusted = false;
    m->machine.clock.advance(2s);
    QVERIFY(!m->flow().hotkeyActive());
    QVERIFY(!m->machine.keyTaps.isInstalled());
    m->machine.trust.trusted = true;
    m->machine.clock.advance(2s);
    QVERIFY(m->flow().hotkeyActive());
    QCOMPARE(changes.size(), 3);
    m->machine.clock.advance(60s);
    QCOMPARE(m->machine.keyTaps.installs, 2);
    QCOMPARE(m->machine.clock.pendingTimers(), 1U);

    // Escape with it, when it comes back in the middle of a recording.
    m->machine.trust.trusted = false;
    m->machine.clock.advance(2s);
    m->flow().beginRecording();
    m->machine.trust.trusted = true;
    m->machine.clock.advance(2s);
    QCOMPARE(m->tapEscape(), KeyVerdict::swallow);
    QCOMPARE(m->flow().state(), FlowState::idle);
}

void FlowControllerTest::aRejectedSessionSignsOut()
{
    m->host().prefs().accountEmail.set(u"a@b.test"_s);
    m->speak();
    m->machine.http.answer(401, "<html>");
    const QString sentence = u"Signed out. Sign in again in Settings."_s;
    QCOMPARE(m->flow().lastError(), sentence);
    QCOMPARE(m->overlayModel().message(), sentence);
    QVERIFY(!m->machine.secrets.items.contains(u"sayvane_session"_s));
    QVERIFY(!m->host().account().signedIn());
    QCOMPARE(m->host().prefs().accountEmail(), QString());
    // Without a session nothing is sent.
    m->speak();
    QCOMPARE(m->machine.http.requests.size(), 1);
    QCOMPARE(m->flow().lastError(), u"Sign in under Settings to start dictating"_s);
}

void FlowControllerTest::signingOutWhileRecordingKeepsTheMeter()
{
    m->host();
    m->tapShortcut();
    m->flow().reportSignedOut();
    QCOMPARE(m->flow().lastError(), u"Signed out. Sign in again in Settings."_s);
    QCOMPARE(m->overlayModel().state(), FlowState::recording);
    QCOMPARE(m->overlayModel().message(), std::nullopt);
    QCOMPARE(m->flow().state(), FlowState::recording);
}

void FlowControllerTest::soundsCanBeSwitchedOff()
{
    m->machine.defaults.values.insert(u"soundsEnabled"_s, false);
    m->host();
    m->dictate(u"hello"_s, {});
    m->finishPaste();
    m->tapShortcut();
    m->tapEscape();
    QVERIFY(m->machine.sounds.played.isEmpty());
}

void FlowControllerTest::aLossDeliversWhatWasHeard_data()
{
    using Lose = void (*)(FakeMicrophone &);
    QTest::addColumn<Lose>("lose");
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<bool>("isDelivered");
    const auto row = [](const char *name, Lose lose, const QString &sentence, bool isDelivered) {
        QTest::newRow(name) << lose << sentence << isDelivered;
    };
    const QString microphoneLost = u"Microphone lost, transcribing what was heard"_s;
    row(
        "unplugged", [](FakeMicrophone &microphone) { microphone.loss = Recording::Loss::microphone; }, microphoneLost,
        true);
    row(
        "no samples", [](FakeMicrophone &microphone) { microphone.isDumb = true; }, microphoneLost, true);
    row(
        "disk full", [](FakeMicrophone &microphone) { microphone.loss = Recording::Loss::disk; },
        u"Disk full, transcribing what was heard"_s, true);
    row(
        "nothing heard from it",
        [](FakeMicrophone &microphone) {
            microphone.isDumb = true;
            microphone.fileSize = 44;
        },
        u"Microphone is busy or unavailable"_s, false);
    row(
        "no room for anything",
        [](FakeMicrophone &microphone) {
            microphone.loss = Recording::Loss::disk;
            microphone.fileSize = 44;
        },
        u"Not enough disk space to record. Free up 50 MB and try again"_s, false);
}

void FlowControllerTest::aLossDeliversWhatWasHeard()
{
    using Lose = void (*)(FakeMicrophone &);
    QFETCH(Lose, lose);
    QFETCH(QString, sentence);
    QFETCH(bool, isDelivered);
    m->host();
    m->tapShortcut();
    m->machine.clock.advance(5s);
    lose(m->machine.microphone);
    m->machine.clock.advance(m->machine.microphone.loss ? 50ms : 2950ms);
    QCOMPARE(m->flow().state(), m->machine.microphone.loss && isDelivered ? FlowState::processing
                                : m->machine.microphone.loss              ? FlowState::idle
                                                                          : FlowState::recording);
    m->machine.clock.advance(50ms);
    QCOMPARE(m->overlayModel().message(), sentence);
    QCOMPARE(m->overlayModel().tone(), isDelivered ? OverlayTone::warning : OverlayTone::failure);
    QVERIFY(!m->flow().hotkey()->interceptEscape());
    QCOMPARE(m->flow().state(), isDelivered ? FlowState::processing : FlowState::idle);
    if (!isDelivered)
        return;
    m->answerText(u"what was heard"_s);
    m->finishPaste();
    QCOMPARE(m->machine.keyPoster.clipboardWhenPosted, QStringList{u"what was heard"_s});
}

void FlowControllerTest::theKeystrokeWaitsForTheDisk_data()
{
    QTest::addColumn<int>("diskMs"); // until the disk has done its work
    QTest::addColumn<int>("keysMs"); // from the answer to the keystroke
    QTest::newRow("faster than the window") << 20 << 50;
    QTest::newRow("slow") << 400 << 400;
    QTest::newRow("hangs") << 60000 << 5050;
}

void FlowControllerTest::theKeystrokeWaitsForTheDisk()
{
    QFETCH(int, diskMs);
    QFETCH(int, keysMs);
    m->machine.defaults.values.insert(u"cleanupEnabled"_s, false);
    m->host();
    m->speak();
    m->machine.background.held = true;
    const auto disk =
        m->machine.clock.after(std::chrono::milliseconds(diskMs), [&] { m->machine.background.release(); });
    m->answerText(u"words"_s);
    QCOMPARE(m->machine.folders.recordings().size(), 1); // the words are nowhere else yet
    m->machine.clock.advance(std::chrono::milliseconds(keysMs - 1));
    QVERIFY(m->machine.keyPoster.posted.isEmpty());
    m->machine.clock.advance(1ms);
    QCOMPARE(m->machine.keyPoster.clipboardWhenPosted, QStringList{u"words"_s});
    QCOMPARE(m->machine.folders.recordings().size(), diskMs > keysMs ? 1 : 0);
    m->finishPaste();
    QCOMPARE(m->flow().state(), FlowState::idle);
    m->machine.clock.advance(60s);
    QVERIFY(m->machine.folders.recordings().isEmpty());
    m->quit();
    QCOMPARE(m->host().history().records().first().text, u"words"_s);
}

/// A sound server that hangs costs nobody else anything.
void FlowControllerTest::aMicrophoneThatTakesItsTimeIsWaitedForByNobody()
{
    m->host();
    m->machine.microphone.answers = false;
    m->tapShortcut();
    QCOMPARE(m->flow().state(), FlowState::idle);
    QVERIFY(!m->overlay().isVisible());
    m->tapShortcut(); // gives up
    m->machine.microphone.answer();
    QCOMPARE(m->flow().state(), FlowState::idle);

    m->machine.microphone.answers = false;
    m->tapShortcut();
    m->machine.microphone.answer();
    QCOMPARE(m->flow().state(), FlowState::recording);
    m->machine.clock.advance(2s);
    m->machine.microphone.answers = false;
    m->tapShortcut();
    m->tapShortcut();
    QCOMPARE(m->tapEscape(), KeyVerdict::pass);
    QVERIFY(m->machine.http.requests.isEmpty());
    m->machine.clock.advance(2s); // what was heard is in the file all the same
    QCOMPARE(m->flow().state(), FlowState::processing);
    m->machine.microphone.answer();
    QCOMPARE(m->flow().state(), FlowState::processing);
    m->answerText(u"all of it"_s);
    m->finishPaste();
    QCOMPARE(m->host().history().records().first().durationSeconds, 2.0);

    // The program may end at any of these moments.
    m->machine.microphone.answers = false;
    m->tapShortcut();
    m->quit();
    m->machine.microphone.answer();
    QVERIFY(m->machine.folders.recordings().isEmpty());
}

void FlowControllerTest::whoLeavesIsHeardButNotTypedFor()
{
    m->host();
    m->tapShortcut();
    QCOMPARE(m->machine.presence.delays, 1);
    m->machine.clock.advance(2s);
    m->machine.presence.leave();
    QCOMPARE(m->flow().state(), FlowState::processing);
    m->answerText(u"so far"_s);
    QCOMPARE(m->flow().state(), FlowState::idle);
    QCOMPARE(m->machine.presence.delays, 0);
    QCOMPARE(m->machine.pasteboard.text(), u"so far"_s);
    QVERIFY(m->machine.keyPoster.posted.isEmpty());
    QCOMPARE(m->host().history().records().size(), 1);
    m->machine.clock.advance(1h);
    QVERIFY(!m->overlay().isVisible());
    m->machine.presence.comeBack();
    QVERIFY(m->overlay().isVisible());
    QCOMPARE(m->overlayModel().message(), u"Copied to clipboard while you were away."_s);
    m->dictate(u"again"_s, {});
    m->finishPaste();
    QCOMPARE(m->machine.keyPoster.clipboardWhenPosted, QStringList{u"again"_s});

    m->dictate(u"just then"_s, {});
    m->machine.keyPoster.whileWaiting = [this] { m->machine.presence.leave(); };
    m->finishPaste();
    QCOMPARE(m->machine.keyPoster.posted.size(), 1);
    QCOMPARE(m->machine.pasteboard.text(), u"just then"_s);

    m->machine.presence.comeBack();
    m->machine.background.held = true;
    m->tapShortcut();
    m->machine.clock.advance(2s);
    m->machine.presence.leave();
    m->answerText(u"disk first"_s);
    QCOMPARE(m->machine.presence.delays, 1);
    m->machine.background.release();
    QCOMPARE(m->machine.presence.delays, 0);
}

void FlowControllerTest::aFailedDictationIsKeptOnlyIfWanted_data()
{
    QTest::addColumn<bool>("isWanted");
    QTest::addColumn<int>("status");
    QTest::newRow("not wanted") << false << 402;
    QTest::newRow("refused") << true << 402;
    QTest::newRow("no words in it") << true << 200;
}

void FlowControllerTest::aFailedDictationIsKeptOnlyIfWanted()
{
    QFETCH(bool, isWanted);
    QFETCH(int, status);
    if (isWanted)
        m->machine.defaults.values.insert(u"keepFailedRecordings"_s, true);
    QStringList kept;
    connect(&m->flow(), &FlowController::recordingKept, this, [&kept](const QString &path) { kept.append(path); });
    m->speak();
    m->machine.http.answer(status, R"({"text": " "})");
    QCOMPARE(m->flow().state(), FlowState::idle);
    QCOMPARE(kept, isWanted ? QStringList{m->machine.microphone.lastPath} : QStringList());
    QCOMPARE(m->machine.folders.recordings().size(), isWanted ? 1 : 0);
}

void FlowControllerTest::leavingInTheMiddleKeepsWhatIsNotSafeYet_data()
{
    QTest::addColumn<int>("moment");
    QTest::addColumn<int>("kept");
    QTest::newRow("recording") << 0 << 1;
    QTest::newRow("recording next to nothing") << 6 << 0;
    QTest::newRow("transcribing") << 1 << 1;
    QTest::newRow("cleaning up") << 2 << 1;
    QTest::newRow("pasting") << 3 << 0;
    QTest::newRow("waiting to try again") << 4 << 1;
    QTest::newRow("saving") << 5 << 0; // which is finished
}

void FlowControllerTest::leavingInTheMiddleKeepsWhatIsNotSafeYet()
{
    QFETCH(int, moment);
    QFETCH(int, kept);
    m->host();
    if (moment == 6)
        m->machine.microphone.fileSize = 16000;
    if (moment == 0 || moment == 6)
        m->tapShortcut();
    else
        m->speak();
    m->machine.background.held = moment == 5;
    if (moment == 2 || moment == 3 || moment == 5)
        m->answerText(u"one two three four"_s);
    if (moment == 3 || moment == 5)
        m->answerText(u"One two three four."_s);
    if (moment == 4)
        m->machine.http.answer(502, {});
    // Once the words are in the history the recording has done its duty.
    QCOMPARE(m->machine.folders.recordings().size(), moment == 3 ? 0 : 1);
    m->quit();
    QCoreApplication::processEvents();
    QCOMPARE(m->machine.folders.recordings().size(), kept);
    QVERIFY(!m->machine.keyTaps.isInstalled());
    QCOMPARE(m->machine.clock.pendingTimers(), 0U);
}

void FlowControllerTest::historyHoldsTheNewestFifty()
{
    Host &host = m->host();
    for (int i = 0; i < 60; ++i)
        host.history().append({.id = QUuid::createUuid(), .date = m->machine.clock.now(), .text = QString::number(i)});
    QCOMPARE(m->flow().history().size(), 50);
    QCOMPARE(m->flow().history().first(), u"59"_s);
}

void FlowControllerTest::longAndForeignTextArrivesWhole_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("emoji") << u"👩‍👩‍👧‍👦👍🏽"_s;
    QTest::newRow("right to left") << u"שלום עולם"_s;
    QTest::newRow("Gujarati") << u"હું કાલે"_s;
    QTest::newRow("100,000 characters") << u"wörter🙂 "_s.repeated(12500).trimmed();
}

void FlowControllerTest::longAndForeignTextArrivesWhole()
{
    QFETCH(QString, text);
    m->machine.defaults.values.insert(u"cleanupEnabled"_s, false);
    m->host();
    m->dictate(text, {});
    m->finishPaste();
    QCOMPARE(m->machine.keyPoster.clipboardWhenPosted, QStringList{text});
    // The next start reads it back.
    m->quit();
    QCOMPARE(m->host().history().records().first().text, text);
}

QTEST_GUILESS_MAIN(FlowControllerTest)
#include "FlowControllerTest.moc"
