#include "program/FlowFixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

/// Choosing a shortcut in the whole program.
class HotkeyRecorderTest final : public QObject
{
    Q_OBJECT

    static LocalKeyEvent down(qint64 keyCode, quint64 flags)
    {
        return {.type = LocalKeyEventType::keyDown, .keyCode = keyCode, .flags = flags};
    }
    static LocalKeyEvent held(quint64 flags) { return {.type = LocalKeyEventType::flagsChanged, .flags = flags}; }

private Q_SLOTS:
    void judgesAKeyPress_data()
    {
        QTest::addColumn<qint64>("keyCode");
        QTest::addColumn<quint64>("flags");
        QTest::addColumn<QString>("shortcut");
        QTest::addColumn<QString>("hint");
        const QString refused =
            u" on its own would be taken from every app. Hold Fn, ⌘, ⌥, ⌃ or ⇧ as well, or choose a function key."_s;
        constexpr quint64 capsLock = 0x10000;
        QTest::newRow("a letter alone") << qint64(0) << quint64(0) << u""_s << u"A"_s + refused;
        QTest::newRow("a letter under Caps Lock") << qint64(0) << capsLock << u""_s << u"A"_s + refused;
        QTest::newRow("a letter with a modifier")
            << qint64(2) << (KeyFlags::shift | KeyFlags::command) << u"⇧⌘D"_s << u""_s;
        QTest::newRow("a function key") << qint64(96) << quint64(0) << u"F5"_s << u""_s;
        QTest::newRow("F20") << qint64(90) << quint64(0) << u"F20"_s << u""_s;
        QTest::newRow("Escape with a modifier") << qint64(53) << KeyFlags::control << u"⌃Escape"_s << u""_s;
        QTest::newRow("Escape alone") << qint64(53) << quint64(0) << u""_s << u""_s;
    }
    void judgesAKeyPress()
    {
        QFETCH(qint64, keyCode);
        QFETCH(quint64, flags);
        QFETCH(QString, shortcut);
        QFETCH(QString, hint);
        FlowFixture program;
        HotkeyRecorder &recorder = program.host().hotkeyRecorder();
        recorder.begin();
        QVERIFY(program.machine.localKeys.send(down(keyCode, flags)));
        QCOMPARE(recorder.hint().value_or(QString()), hint);
        QCOMPARE(recorder.capturing(), !hint.isEmpty());
        QCOMPARE(program.machine.localKeys.isWatched(), !hint.isEmpty());
        QCOMPARE(program.host().prefs().hotkeySpec().displayString(), shortcut.isEmpty() ? u"Fn + Space"_s : shortcut);
        program.machine.keyTaps.tap(keyCode, flags & KeyFlags::compared);
        QCOMPARE(program.flow().state(), shortcut.isEmpty() ? FlowState::idle : FlowState::recording);
    }

    void showsTheModifiersAndSuspendsTheShortcut()
    {
        FlowFixture program;
        HotkeyRecorder &recorder = program.host().hotkeyRecorder();
        FakeLocalKeys &keys = program.machine.localKeys;
        QVERIFY(!keys.send(held(KeyFlags::command)));
        recorder.begin();
        recorder.begin();
        QSignalSpy changes(&recorder, &HotkeyRecorder::changed);
        QVERIFY(!keys.send(held(KeyFlags::command)));
        QCOMPARE(recorder.pressed(), u"⌘"_s);
        keys.send(held(KeyFlags::command | KeyFlags::shift));
        QCOMPARE(recorder.pressed(), u"⇧⌘"_s);
        QCOMPARE(changes.size(), 2);
        program.tapShortcut();
        QCOMPARE(program.flow().state(), FlowState::idle);
        // The permission went and came back: the shortcut installed anew must not fire either.
        program.flow().hotkeyPermissionLost();
        program.flow().start();
        program.tapShortcut();
        QCOMPARE(program.flow().state(), FlowState::idle);
        recorder.cancel();
        QCOMPARE(recorder.pressed(), u""_s);
        program.tapShortcut();
        QCOMPARE(program.flow().state(), FlowState::recording);
    }
};

QTEST_GUILESS_MAIN(HotkeyRecorderTest)
#include "HotkeyRecorderTest.moc"
