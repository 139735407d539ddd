#include "dictation/TextInserter.h"

#include "preferences/Prefs.h"
#include "support/FakeMachine.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// A clipboard and a keyboard in front of an application.
struct Fixture
{
    FakeMachine machine;
    Prefs prefs{machine.defaults, u"https://service.test"_s};
    TextInserter inserter{machine.pasteboard, machine.keyPoster, machine.trust, machine.presence, prefs, machine.clock};
    std::stop_source stop;
    std::optional<bool> pasted; ///< none as long as it is under way

    Fixture() { machine.defaults.values.insert(u"restoreClipboard"_s, true); }

    QCoro::Task<> insert(QString text)
    {
        const bool result = co_await inserter.insert(text, stop.get_token());
        pasted = result;
    }
};

const QList<PasteboardItem> rich{{{u"text/plain"_s, "old"}, {u"text/html"_s, "<b>old</b>"}},
                                 {{u"image/png"_s, "pixels"}}};

} // namespace

class TextInserterTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m = std::make_unique<Fixture>();
        m->machine.pasteboard.contents = rich;
    }
    void cleanup() { m.reset(); }

    void leavesTheTextWhereThereIsNothingToPutBack_data();
    void leavesTheTextWhereThereIsNothingToPutBack();
    void aCopyOfSomebodyElseStays();
    void aCopyJustBeforeThePasteIsNotPasted();
    void theClipboardIsReadWhileTheServiceWorks_data();
    void theClipboardIsReadWhileTheServiceWorks();
    void theTextStaysUntilTheApplicationHasIt_data();
    void theTextStaysUntilTheApplicationHasIt();
    void aClipboardManagerThatTakesTheTextIsNotTheUser_data();
    void aClipboardManagerThatTakesTheTextIsNotTheUser();
    void onlyPlainTextIsPasted();
    void aStopEndsTheWaitsEarly_data();
    void aStopEndsTheWaitsEarly();

private:
    std::unique_ptr<Fixture> m;
};

void TextInserterTest::leavesTheTextWhereThereIsNothingToPutBack_data()
{
    using Change = void (*)(Fixture &);
    QTest::addColumn<Change>("before");
    QTest::addColumn<Change>("meanwhile");
    QTest::addColumn<int>("endsAfterMs");
    QTest::addColumn<bool>("pasted");
    const auto row = [](
                         const char *name, int endsAfterMs, bool pasted, Change before,
                         Change meanwhile = [](Fixture &) {}) {
        QTest::newRow(name) << before << meanwhile << endsAfterMs << pasted;
    };
    row("no trust", 0, false, [](Fixture &f) { f.machine.trust.trusted = false; });
    row(
        "trust withdrawn meanwhile", 50, false, [](Fixture &) {}, [](Fixture &f) { f.machine.trust.trusted = false; });
    row("keystroke impossible", 50, false, [](Fixture &f) { f.machine.keyPoster.works = false; });
    row("not wanted", 50, true, [](Fixture &f) { f.machine.defaults.values.insert(u"restoreClipboard"_s, false); });
    row("empty clipboard", 50, true, [](Fixture &f) { f.machine.pasteboard.contents.clear(); });
}

void TextInserterTest::leavesTheTextWhereThereIsNothingToPutBack()
{
    using Change = void (*)(Fixture &);
    QFETCH(Change, before);
    QFETCH(Change, meanwhile);
    QFETCH(int, endsAfterMs);
    QFETCH(bool, pasted);
    before(*m);
    m->insert(u"new"_s);
    meanwhile(*m);
    m->machine.clock.advance(std::chrono::milliseconds(endsAfterMs));
    QCOMPARE(m->pasted, pasted);
    QCOMPARE(m->machine.keyPoster.posted.size(), pasted ? 1 : 0);
    m->machine.clock.advance(1s);
    QCOMPARE(m->machine.pasteboard.text(), u"new"_s);
    QCOMPARE(m->machine.clock.pendingTimers(), 0U);
    const bool mayBeRead = m->machine.trust.trusted && m->prefs.restoreClipboard();
    QCOMPARE(m->inserter.prepare() != nullptr, mayBeRead);
    QVERIFY(mayBeRead || endsAfterMs > 0 || m->machine.pasteboard.asked == 0);
}

void TextInserterTest::aCopyOfSomebodyElseStays()
{
    for (const auto after : {20ms, 549ms}) { // before the paste, and just before the end
        m->insert(u"new"_s);
        m->machine.clock.advance(after);
        m->machine.pasteboard.copy(u"copied by hand"_s);
        m->machine.clock.advance(1s);
        QCOMPARE(m->machine.pasteboard.text(), u"copied by hand"_s);
        QCOMPARE(m->pasted, true);
    }
}

void TextInserterTest::aCopyJustBeforeThePasteIsNotPasted()
{
    const auto inserting = m->insert(u"spoken"_s);
    m->machine.clock.advance(20ms);
    m->machine.pasteboard.copy(u"stolen"_s);
    m->machine.clock.advance(80ms);
    QCOMPARE(m->machine.keyPoster.clipboardWhenPosted, QStringList{u"spoken"_s});
    m->machine.clock.advance(500ms);
    QCOMPARE(m->pasted, std::optional(true));
    QCOMPARE(m->machine.pasteboard.text(), u"stolen"_s);
}

void TextInserterTest::theClipboardIsReadWhileTheServiceWorks_data()
{
    QTest::addColumn<int>("ownerNeedsMs");
    QTest::addColumn<int>("copiedAfterMs"); // of the second the service needs; none when negative
    QTest::addColumn<bool>("isPrepared");
    QTest::addColumn<int>("pastedAfterMs"); // counted from the answer
    QTest::addColumn<QString>("restored");
    QTest::addColumn<int>("restoredAfterMs"); // counted from the answer
    const auto row = [](const char *name, int ownerNeedsMs, int copiedAfterMs, bool isPrepared, int pastedAfterMs,
                        const QString &restored, int restoredAfterMs) {
        QTest::newRow(name) << ownerNeedsMs << copiedAfterMs << isPrepared << pastedAfterMs << restored
                            << restoredAfterMs;
    };
    row("an ordinary owner", 0, -1, true, 50, u"old"_s, 550);
    row("a picture of 0.9 s", 900, -1, true, 50, u"old"_s, 550);
    row("one that needs longer than the service", 3000, -1, true, 50, u"old"_s, 2000);
    row("an owner that hangs", 20000, -1, true, 50, u"new"_s, 5000);
    row("a copy while the service works", 200, 500, true, 50, u"copied"_s, 550);
    row("a copy just before the answer", 30, 990, true, 80, u"copied"_s, 580);
    row("a slow copy just before the answer", 2000, 990, true, 150, u"copied"_s, 2000);
    row("nothing was prepared", 30, -1, false, 80, u"old"_s, 580);
    row("nothing was prepared and the owner is slow", 3000, -1, false, 150, u"old"_s, 3000);
}

void TextInserterTest::theClipboardIsReadWhileTheServiceWorks()
{
    QFETCH(int, ownerNeedsMs);
    QFETCH(int, copiedAfterMs);
    QFETCH(bool, isPrepared);
    QFETCH(int, pastedAfterMs);
    QFETCH(QString, restored);
    QFETCH(int, restoredAfterMs);
    FakePasteboard &pasteboard = m->machine.pasteboard;
    pasteboard.ownerNeeds = std::chrono::milliseconds(ownerNeedsMs);
    const auto prepared = isPrepared ? m->inserter.prepare() : nullptr;
    for (int ms = 0; ms < 1000; ms += 10) {
        if (ms == copiedAfterMs)
            pasteboard.copy(u"copied"_s);
        m->machine.clock.advance(10ms);
    }
    m->insert(u"new"_s);
    m->machine.clock.advance(std::chrono::milliseconds(pastedAfterMs - 1));
    QVERIFY(m->machine.keyPoster.posted.isEmpty());
    m->machine.clock.advance(1ms);
    QCOMPARE(m->machine.keyPoster.clipboardWhenPosted, QStringList{u"new"_s});
    m->machine.clock.advance(std::chrono::milliseconds(restoredAfterMs - pastedAfterMs - 1));
    QCOMPARE(pasteboard.text(), u"new"_s);
    m->machine.clock.advance(1ms);
    QCOMPARE(m->pasted, true);
    QCOMPARE(pasteboard.text(), restored);
    m->machine.clock.advance(20s);
    QCOMPARE(pasteboard.text(), restored);
    QCOMPARE(m->machine.clock.pendingTimers(), 0U);
}

void TextInserterTest::theTextStaysUntilTheApplicationHasIt_data()
{
    QTest::addColumn<int>("readAfterMs"); // after the keystroke
    QTest::addColumn<int>("restoredAfterMs");
    QTest::newRow("at once") << 0 << 500;
    QTest::newRow("in time") << 400 << 500;
    QTest::newRow("late") << 1730 << 1900;
    QTest::newRow("never") << 60000 << 3000;
}

void TextInserterTest::theTextStaysUntilTheApplicationHasIt()
{
    QFETCH(int, readAfterMs);
    QFETCH(int, restoredAfterMs);
    m->machine.keyPoster.isReadAtOnce = false;
    m->insert(u"new"_s);
    m->machine.clock.advance(50ms);
    for (int ms = 0; ms < restoredAfterMs; ms += 10) {
        m->machine.pasteboard.reads += ms == readAfterMs;
        QCOMPARE(m->machine.pasteboard.text(), u"new"_s);
        QCOMPARE(m->pasted.has_value(), ms >= 500); // the next dictation does not wait
        m->machine.clock.advance(10ms);
    }
    QCOMPARE(m->machine.pasteboard.contents, rich);
    QCOMPARE(m->machine.clock.pendingTimers(), 0U);
}

void TextInserterTest::aClipboardManagerThatTakesTheTextIsNotTheUser_data()
{
    QTest::addColumn<int>("takenAfterMs"); // after the text was put there
    QTest::newRow("at once") << 5;
    QTest::newRow("after the paste") << 200;
    QTest::newRow("while a busy application has not read it") << 900;
}

void TextInserterTest::aClipboardManagerThatTakesTheTextIsNotTheUser()
{
    QFETCH(int, takenAfterMs);
    FakePasteboard &pasteboard = m->machine.pasteboard;
    m->machine.keyPoster.isReadAtOnce = false;
    pasteboard.ownerNeeds = 20ms;
    for (const QString &text : {u"one"_s, u"two"_s}) {
        m->insert(text);
        m->machine.clock.advance(std::chrono::milliseconds(30 + takenAfterMs)); // it was read before
        QCOMPARE(pasteboard.text(), text);
        const qint64 count = pasteboard.count;
        pasteboard.copy(text);
        m->machine.clock.advance(6s);
        QCOMPARE(pasteboard.contents, rich);
        QCOMPARE(pasteboard.count, count + 2); // the text was not put there again
        pasteboard.ours = false;
    }
    QCOMPARE(m->machine.keyPoster.clipboardWhenPosted, QStringList({u"one"_s, u"two"_s}));
    // The user copies the same text from our own window: that is a wish.
    m->insert(u"three"_s);
    m->machine.clock.advance(200ms);
    pasteboard.setString(u"three"_s);
    m->machine.clock.advance(6s);
    QCOMPARE(pasteboard.text(), u"three"_s);
}

void TextInserterTest::onlyPlainTextIsPasted()
{
    m->insert(u"rm\x1b[201~\r\nné\u00a0\t👩‍👧\x7f\u009b\b\r"_s);
    m->machine.clock.advance(1s);
    QCOMPARE(m->machine.keyPoster.clipboardWhenPosted, QStringList{u"rm[201~\nné\u00a0\t👩‍👧\n"_s});
}

void TextInserterTest::aStopEndsTheWaitsEarly_data()
{
    QTest::addColumn<int>("afterMs");
    QTest::addColumn<bool>("isPasted");
    QTest::newRow("before the paste") << 20 << false;
    QTest::newRow("after the paste") << 100 << true;
    QTest::newRow("when a busy application has not read it") << 1200 << true;
}

void TextInserterTest::aStopEndsTheWaitsEarly()
{
    QFETCH(int, afterMs);
    QFETCH(bool, isPasted);
    m->machine.keyPoster.isReadAtOnce = false;
    m->insert(u"new"_s);
    m->machine.clock.advance(std::chrono::milliseconds(afterMs));
    m->stop.request_stop();
    QCOMPARE(m->pasted, std::optional(isPasted));
    QCOMPARE(m->machine.keyPoster.clipboardWhenPosted, isPasted ? QStringList{u"new"_s} : QStringList());
    QCOMPARE(m->machine.pasteboard.contents, rich);
    QCOMPARE(m->machine.clock.pendingTimers(), 0U);
}

QTEST_GUILESS_MAIN(TextInserterTest)
#include "TextInserterTest.moc"
