#include "dictation/HotkeyMonitor.h"

#include "support/FakeMachine.h"

#include <QTest>

#include <cstdlib>
#include <new>

using namespace Qt::StringLiterals;

namespace {

int allocations = 0;

} // namespace

void *operator new(size_t size)
{
    ++allocations;
    if (void *memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void *memory) noexcept
{
    std::free(memory);
}
void operator delete(void *memory, size_t) noexcept
{
    std::free(memory);
}

class HotkeyMonitorTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decides_data();
    void decides();
    void escapeCanBeTheShortcut();
    void aDisabledTapIsTakenIntoUseAgain();
    void watchesOnlyWhatItMayJudge();

private:
    FakeKeyTaps m_taps;
};

/// The effects: "t" for a trigger, "c" for a cancel, "s" for swallowed and "-" for passed on.
void HotkeyMonitorTest::decides_data()
{
    QTest::addColumn<HotkeySpec>("spec");
    QTest::addColumn<KeyEvent>("event");
    QTest::addColumn<QByteArray>("idle");
    QTest::addColumn<QByteArray>("recording");
    const auto row = [](const char *name, const KeyEvent &event, const QByteArray &idle, const QByteArray &recording,
                        const HotkeySpec &spec = {}) { QTest::newRow(name) << spec << event << idle << recording; };
    constexpr auto down = KeyEventType::keyDown;
    constexpr auto up = KeyEventType::keyUp;
    constexpr quint64 fn = 0x800000;
    row("shortcut", {down, 49, fn, false}, "ts", "ts");
    row("shortcut held", {down, 49, fn, true}, "s", "s");
    row("with caps lock, keypad, help and side bits", {down, 49, fn | 0x10000 | 0x200000 | 0x400000 | 0x8, false}, "ts",
        "ts");
    row("without fn", {down, 49, 0, false}, "-", "-");
    row("one more modifier", {down, 49, fn | 0x20000, false}, "-", "-");
    const HotkeySpec four{.keyCode = 130, .fn = false, .command = true, .option = true, .control = true, .shift = true};
    row("four modifiers", {down, 130, 0x1E0000, false}, "ts", "ts", four);
    row("three of four modifiers", {down, 130, 0x1C0000, false}, "-", "-", four);
    row("escape", {down, 53, 0, false}, "-", "cs");
    row("escape held", {down, 53, 0, true}, "-", "s");
    row("escape released", {up, 53, 0, false}, "-", "s");
    row("escape with fn and caps lock", {down, 53, fn | 0x10000, false}, "-", "cs");
    row("escape with shift", {down, 53, 0x20000, false}, "-", "-");
    row("escape with command", {down, 53, 0x100000, false}, "-", "-");
}

void HotkeyMonitorTest::decides()
{
    QFETCH(HotkeySpec, spec);
    QFETCH(KeyEvent, event);
    QFETCH(QByteArray, idle);
    QFETCH(QByteArray, recording);
    int triggers = 0;
    int cancels = 0;
    HotkeyMonitor monitor(
        m_taps, spec, [&] { ++triggers; }, [&] { ++cancels; });
    QVERIFY(monitor.start());
    const auto effects = [&](bool intercept, bool suspended) {
        monitor.setInterceptEscape(intercept);
        monitor.setSuspended(suspended);
        triggers = cancels = 0;
        const int before = allocations;
        const KeyVerdict verdict = monitor.handle(event);
        const bool allocated = allocations != before;
        return QByteArray(triggers, 't') + QByteArray(cancels, 'c') + (verdict == KeyVerdict::swallow ? "s" : "-") +
               (allocated ? " with memory" : "");
    };
    QCOMPARE(effects(false, false), idle);
    QCOMPARE(effects(true, false), recording);
    QCOMPARE(effects(true, true), "-");
    QCOMPARE(effects(false, false), idle);
}

void HotkeyMonitorTest::escapeCanBeTheShortcut()
{
    int triggers = 0;
    HotkeyMonitor monitor(
        m_taps, {.keyCode = 53, .fn = false}, [&] { ++triggers; }, [] { QFAIL("cancelled"); });
    monitor.setInterceptEscape(true);
    QCOMPARE(monitor.handle({KeyEventType::keyDown, 53, 0, false}), KeyVerdict::swallow);
    QCOMPARE(triggers, 1);
}

void HotkeyMonitorTest::aDisabledTapIsTakenIntoUseAgain()
{
    int triggers = 0;
    HotkeyMonitor monitor(
        m_taps, {}, [&] { ++triggers; }, [] {});
    const KeyEvent timeout{KeyEventType::tapDisabledByTimeout, 49, 0x800000, false};
    const KeyEvent userInput{KeyEventType::tapDisabledByUserInput, 49, 0x800000, false};
    QCOMPARE(monitor.handle(timeout), KeyVerdict::pass); // not started: nothing to take into use
    QVERIFY(monitor.start());
    monitor.setSuspended(true);
    const int before = m_taps.enables;
    QCOMPARE(m_taps.send(timeout), KeyVerdict::pass);
    QCOMPARE(m_taps.send(userInput), KeyVerdict::pass);
    QCOMPARE(m_taps.enables - before, 2);
    QCOMPARE(triggers, 0);
    monitor.setSuspended(false);
    QCOMPARE(m_taps.send({KeyEventType::keyDown, 49, 0x800000, false}), KeyVerdict::swallow);
    QCOMPARE(triggers, 1);
}

void HotkeyMonitorTest::watchesOnlyWhatItMayJudge()
{
    HotkeyMonitor monitor(
        m_taps, {}, [] {}, [] {});
    const QList<KeyChord> shortcut{{49, KeyFlags::fn}};
    const QList<KeyChord> withEscape{{49, KeyFlags::fn}, {53, 0}, {53, KeyFlags::fn}};
    QVERIFY(monitor.start());
    QCOMPARE(m_taps.watched, shortcut);
    monitor.setInterceptEscape(true);
    QCOMPARE(m_taps.watched, withEscape);
    monitor.setSuspended(true);
    QCOMPARE(m_taps.watched, QList<KeyChord>());
    monitor.setSuspended(false);
    QCOMPARE(m_taps.watched, withEscape);
    monitor.setInterceptEscape(false);
    QCOMPARE(m_taps.watched, shortcut);
    monitor.stop();
    monitor.stop();
    QVERIFY(!m_taps.isInstalled());
    monitor.setInterceptEscape(true); // and nothing is watched any more
    QCOMPARE(m_taps.watched, QList<KeyChord>());
}

QTEST_GUILESS_MAIN(HotkeyMonitorTest)
#include "HotkeyMonitorTest.moc"
