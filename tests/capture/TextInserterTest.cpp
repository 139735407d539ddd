#include "capture/TextInserter.h"

#include "settings/Defaults.h"
#include "settings/Prefs.h"
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
    Defaults defaults{machine.defaults};
    Prefs prefs{defaults, u"https://service.test"_s};
    TextInserter inserter{machine.pasteboard, machine.keyPoster, machine.trust, prefs, machine.clock};
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
        m->machine.pasteboard.setItems(rich);
    }
    void cleanup() { m.reset(); }

    void leavesTheTextWhereThereIsNothingToPutBack_data();
    void leavesTheTextWhereThereIsNothingToPutBack();
    void aCopyOfSomebodyElseStays();
    void aCopyJustBeforeThePasteIsNotPasted();
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
    row("empty clipboard", 50, true, [](Fixture &f) { f.machine.pasteboard.setItems({}); });
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
}

void TextInserterTest::aCopyOfSomebodyElseStays()
{
    for (const auto after : {20ms, 549ms}) { // before the paste, and just before the end
        m->insert(u"new"_s);
        m->machine.clock.advance(after);
        m->machine.pasteboard.setString(u"copied by hand"_s);
        m->machine.clock.advance(1s);
        QCOMPARE(m->machine.pasteboard.text(), u"copied by hand"_s);
        QCOMPARE(m->pasted, true);
    }
}

void TextInserterTest::aCopyJustBeforeThePasteIsNotPasted()
{
    const auto inserting = m->insert(u"spoken"_s);
    m->machine.clock.advance(20ms);
    m->machine.pasteboard.setString(u"stolen"_s);
    m->machine.clock.advance(80ms);
    QCOMPARE(m->machine.keyPoster.clipboardWhenPosted, QStringList{u"spoken"_s});
    m->machine.clock.advance(500ms);
    QCOMPARE(m->pasted, std::optional(true));
    QCOMPARE(m->machine.pasteboard.text(), u"stolen"_s);
}

void TextInserterTest::aStopEndsTheWaitsEarly_data()
{
    QTest::addColumn<int>("afterMs");
    QTest::addColumn<bool>("isPasted");
    QTest::newRow("before the paste") << 20 << false;
    QTest::newRow("after the paste") << 100 << true;
}

void TextInserterTest::aStopEndsTheWaitsEarly()
{
    QFETCH(int, afterMs);
    QFETCH(bool, isPasted);
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
