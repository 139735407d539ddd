#include "desktop/x11/RecordingWindow.h"
#include "desktop/x11/Typist.h"
#include "machine/x11/X11Connection.h"
#include "machine/x11/X11Desktop.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>

#include <linux/input-event-codes.h>
#include <sys/wait.h>

using namespace Qt::StringLiterals;

namespace {

constexpr KeyChord fnSpace{49, KeyFlags::fn};
constexpr KeyChord escape{53, 0};
constexpr KeyChord fnEscape{53, KeyFlags::fn};

} // namespace

/// Real key events, with another program's window in the focus.
class KeyTapTest : public QObject
{
    Q_OBJECT

    struct Scene
    {
        X11Desktop desktop;
        RecordingWindow window;
        Typist typist;
        QList<KeyEvent> events; // as this thread hears of them, when it is free
        std::atomic<KeyVerdict> verdict = KeyVerdict::swallow;
        QObject here;
        std::unique_ptr<KeyTap> tap;

        explicit Scene(const QList<KeyChord> &chords) { tap = install(chords); }

        std::unique_ptr<KeyTap> install(const QList<KeyChord> &chords)
        {
            return desktop.keyTaps().install(chords, [this](const KeyEvent &event) {
                QMetaObject::invokeMethod(
                    &here, [this, event] { events.append(event); }, Qt::QueuedConnection);
                return verdict.load();
            });
        }
        qsizetype presses() const
        {
            return std::ranges::count_if(events, [](const KeyEvent &event) {
                return event.type == KeyEventType::keyDown && !event.isAutorepeat;
            });
        }
        void hold(const QList<int> &keys)
        {
            for (const int key : keys)
                typist.press(key);
        }
        void letGo(const QList<int> &keys)
        {
            for (const int key : keys)
                typist.release(key);
        }
        void shortcut()
        {
            hold({KEY_LEFTMETA, KEY_SPACE});
            letGo({KEY_SPACE, KEY_LEFTMETA});
        }
        /// Everything that the window has seen, once a key typed now has arrived there too.
        QStringList seen()
        {
            typist.tap(KEY_F9);
            const auto isMark = [](const QString &line) { return line.startsWith(u"-F9"_s); };
            [[maybe_unused]] const bool arrived =
                QTest::qWaitFor([&] { return std::ranges::any_of(window.log(), isMark); });
            QStringList lines = window.log().filter(QRegularExpression(u"^[+-](?!F9)"_s));
            window.clear();
            return lines;
        }
    };

    static bool firesRightly(Scene &scene, const QList<std::pair<int, quint64>> &keys, unsigned held, quint64 watched)
    {
        quint64 flags = 0;
        for (unsigned i = 0; i < 4; ++i) {
            if (held & (1U << i)) {
                scene.typist.press(keys[i].first);
                flags |= keys[i].second;
            }
        }
        scene.events.clear();
        scene.typist.tap(KEY_F5);
        for (const auto &[key, flag] : keys)
            scene.typist.release(key);
        scene.seen();
        return QTest::qWaitFor([&] { return scene.presses() == (flags == watched ? 1 : 0); });
    }

private Q_SLOTS:
    void theShortcutFiresOnceAndNeverReachesTheWindow()
    {
        Scene scene({fnSpace});
        QVERIFY(scene.tap);
        scene.typist.tap(KEY_CAPSLOCK);
        scene.typist.tap(KEY_NUMLOCK);
        scene.seen();
        scene.hold({KEY_LEFTMETA, KEY_SPACE});
        QTRY_COMPARE(scene.events.size(), 2);
        QVERIFY(!scene.typist.isDown(KEY_SPACE)); // and so it does not repeat
        scene.letGo({KEY_SPACE, KEY_LEFTMETA});
        const QStringList seen = scene.seen();
        QCOMPARE(seen.size(), 2);
        QVERIFY(seen[0].startsWith(u"+Super_L"_s));
        QVERIFY(seen[1].startsWith(u"-Super_L"_s));
        QTRY_COMPARE(scene.presses(), 1);
        QCOMPARE(scene.events.constFirst().keyCode, 49);
        QCOMPARE(scene.events.constFirst().flags, KeyFlags::fn);
        QCOMPARE(scene.events.constLast().type, KeyEventType::keyUp);
        QVERIFY(!scene.typist.isAnyKeyDown());
    }

    /// Every set of held modifiers fires its own shortcut and no other, whatever locks are on.
    void onlyTheExactModifiersFire()
    {
        const QList<QStringList> layouts{
            {u"us"_s}, {u"de"_s}, {u"us,de"_s}, {u"us"_s, u"-option"_s, u"altwin:meta_win"_s}};
        for (const QStringList &layout : layouts) {
            const bool hasAltGr = layout.constFirst() == u"de"_s;
            const QList<std::pair<int, quint64>> keys{{KEY_LEFTMETA, KeyFlags::fn},
                                                      {KEY_RIGHTALT, hasAltGr ? KeyFlags::command : KeyFlags::option},
                                                      {KEY_RIGHTCTRL, KeyFlags::control},
                                                      {KEY_LEFTSHIFT, KeyFlags::shift}};
            for (const auto &[watchedKey, watched] : keys) {
                Typist::setLayout(layout);
                Scene scene({{96, watched}});
                for (const int lock : {0, KEY_CAPSLOCK, KEY_NUMLOCK}) {
                    if (lock != 0)
                        scene.typist.tap(lock);
                    for (unsigned held = 0; held < 16; ++held)
                        QVERIFY2(firesRightly(scene, keys, held, watched),
                                 qPrintable(u"%1: %2 held, %3 watched, lock %4"_s.arg(layout.join(u' '))
                                                .arg(held)
                                                .arg(watched, 0, 16)
                                                .arg(lock)));
                }
            }
        }
    }

    /// Super goes up first and another key goes down and up, all while the shortcut's key is held.
    void whileTheShortcutIsHeldOtherKeysArrive()
    {
        Scene scene({fnSpace});
        scene.hold({KEY_LEFTMETA, KEY_SPACE});
        QTRY_COMPARE(scene.presses(), 1);
        scene.typist.press(KEY_X);
        scene.typist.release(KEY_X);
        scene.typist.release(KEY_LEFTMETA);
        QTRY_VERIFY(scene.window.log().contains(u"-Super_L Mod4"_s));
        scene.typist.tap(KEY_Y);
        QTRY_VERIFY(scene.window.log().contains(u"-y"_s));
        scene.typist.release(KEY_SPACE);
        scene.typist.tap(KEY_SPACE);
        const QStringList expected{u"+Super_L"_s, u"+x Mod4"_s, u"-x Mod4"_s, u"-Super_L Mod4"_s,
                                   u"+y"_s,       u"-y"_s,      u"+space"_s,  u"-space"_s};
        QCOMPARE(scene.seen(), expected);
        QTRY_COMPARE(scene.presses(), 1);
    }

    /// All at once, faster than the tap lets go: a shortcut may count as held on, and keys may come late; but no
    /// space is typed, nothing else is lost and nothing stays held.
    void keysInAHurryLeaveNothingBehind()
    {
        Scene scene({fnSpace});
        for (int round = 0; round < 20; ++round) {
            scene.hold({KEY_LEFTMETA, KEY_SPACE});
            scene.typist.tap(KEY_X);
            scene.letGo({KEY_LEFTMETA, KEY_SPACE});
        }
        const auto seen = [&](const QString &what) {
            return scene.window.log().filter(QRegularExpression(u'^' + what)).size();
        };
        QTRY_COMPARE(seen(u"[+]x"_s), 20);
        QTRY_COMPARE(seen(u"-x"_s), 20);
        QTRY_COMPARE(seen(u"-Super_L"_s), 20);
        QTRY_VERIFY(scene.presses() >= 1);
        QCOMPARE(seen(u"[+]space"_s), 0);
        scene.window.clear();
        scene.typist.tap(KEY_SPACE);
        QCOMPARE(scene.seen(), QStringList({u"+space"_s, u"-space"_s}));
    }

    /// Programs read the mapping anew whenever another keyboard comes into use, and must not for each shortcut.
    void theKeyboardInUseStaysTheSame()
    {
        Scene scene({fnSpace});
        X11Connection other;
        const X11Keyboard keyboard(other);
        const QSignalSpy changes(&other, &X11Connection::eventReceived);
        qsizetype before = 0;
        for (int round = 1; round <= 2; ++round) { // the first one tells which keyboard it is
            before = changes.size();
            scene.hold({KEY_LEFTMETA, KEY_SPACE});
            QTRY_COMPARE(scene.presses(), round);
            scene.tap->enable(); // after the thread has seen to the press
            scene.letGo({KEY_SPACE, KEY_LEFTMETA});
            scene.seen();
            other.atoms()[QByteArray::number(round)];
            other.dispatchUntil([] { return true; }, std::chrono::milliseconds(0));
        }
        QCOMPARE(changes.size(), before);
    }

    void theMainThreadMayBeBusy()
    {
        Scene scene({fnSpace});
        for (int round = 0; round < 2; ++round) {
            scene.hold({KEY_LEFTMETA, KEY_SPACE});
            const QDeadlineTimer deadline(2000);
            while (scene.typist.isDown(KEY_SPACE))
                QVERIFY(!deadline.hasExpired());
            scene.typist.tap(KEY_X);
            scene.letGo({KEY_SPACE, KEY_LEFTMETA});
            scene.typist.tap(KEY_Y);
        }
        scene.typist.tap(KEY_Z);
        QVERIFY(scene.window.awaits(u"-z"_s));
        const QStringList typed{u"+Super_L"_s, u"+x Mod4"_s, u"-x Mod4"_s, u"-Super_L Mod4"_s, u"+y"_s, u"-y"_s};
        QCOMPARE(scene.window.log(), typed + typed + QStringList({u"+z"_s, u"-z"_s}));
        QVERIFY(scene.events.isEmpty());
        QTRY_COMPARE(scene.presses(), 2);
    }

    /// Stopped, it takes what it watches, and takes it for what it is when it goes on. All else is typed.
    void aStoppedProgramHoldsNobodyUp()
    {
        RecordingWindow window;
        Typist typist;
        QByteArray expected = "ready\n";
        QProcess program;
        program.start(QCoreApplication::applicationFilePath(), {u"watch"_s});
        const auto says = [&] { return program.peek(1000) == expected; };
        QTRY_VERIFY(says());
        typist.press(KEY_LEFTMETA);
        typist.press(KEY_SPACE);
        expected += "49\n";
        QTRY_VERIFY(says());
        const auto pid = static_cast<pid_t>(program.processId());
        QCOMPARE(::kill(pid, SIGSTOP), 0);
        siginfo_t stopped{};
        QCOMPARE(::waitid(P_PID, static_cast<id_t>(pid), &stopped, WSTOPPED | WNOWAIT), 0);
        typist.press(KEY_ESC);
        for (const int key : {KEY_LEFTMETA, KEY_SPACE, KEY_ESC})
            typist.release(key);
        for (const int key : {KEY_H, KEY_I})
            typist.tap(key);
        QVERIFY(window.awaits(u"-i"_s));
        const QStringList typed = window.log().filter(QRegularExpression(u"^[+-](h|i|space|Escape)\\b"_s));
        QCOMPARE(typed, QStringList({u"+h"_s, u"-h"_s, u"+i"_s, u"-i"_s}));
        QVERIFY(says());
        QCOMPARE(::kill(pid, SIGCONT), 0);
        expected += "53\n";
        QTRY_VERIFY2(says(), program.peek(1000));
        program.kill();
        QVERIFY(program.waitForFinished());
    }

    void aPassedChordArrives()
    {
        Scene scene({escape});
        scene.verdict = KeyVerdict::pass;
        scene.typist.tap(KEY_ESC);
        QTRY_COMPARE(scene.window.log(), QStringList({u"+Escape"_s, u"-Escape"_s}));
        QTRY_COMPARE(scene.presses(), 1);
    }

    void escapeIsTakenOnlyWhileWatched()
    {
        Scene scene({fnSpace});
        const QStringList typed{u"+Escape"_s, u"-Escape"_s};
        scene.typist.tap(KEY_ESC);
        QCOMPARE(scene.seen(), typed);
        QVERIFY(scene.tap->watch(std::array{fnSpace, escape, fnEscape}));
        scene.typist.tap(KEY_ESC);
        QCOMPARE(scene.seen(), QStringList());
        QTRY_COMPARE(scene.presses(), 1);
        scene.typist.press(KEY_LEFTSHIFT);
        scene.typist.tap(KEY_ESC);
        scene.typist.release(KEY_LEFTSHIFT);
        QCOMPARE(scene.seen().size(), 4);
        QVERIFY(scene.tap->watch(std::array{fnSpace}));
        scene.typist.tap(KEY_ESC);
        QCOMPARE(scene.seen(), typed);
    }

    /// Escape pressed and let go while the shortcut's key is still down, then the same shortcut again.
    void aSecondChordWithinTheFirstIsJudgedToo()
    {
        Scene scene({fnSpace, escape, fnEscape});
        scene.hold({KEY_LEFTMETA, KEY_SPACE});
        QTRY_COMPARE(scene.presses(), 1);
        scene.typist.press(KEY_ESC);
        QTRY_COMPARE(scene.presses(), 2);
        scene.typist.release(KEY_SPACE);
        scene.typist.release(KEY_ESC);
        scene.typist.tap(KEY_SPACE);
        QTRY_COMPARE(scene.presses(), 3);
        scene.typist.release(KEY_LEFTMETA);
        QCOMPARE(scene.seen(), QStringList({u"+Super_L"_s, u"-Super_L Mod4"_s}));
    }

    void suspendedOrRemovedTheShortcutTypes()
    {
        Scene scene({fnSpace});
        const auto press = [&] {
            scene.shortcut();
            return scene.seen().contains(u"+space Mod4"_s);
        };
        QVERIFY(scene.tap->watch({}));
        QVERIFY(press());
        QVERIFY(scene.tap->watch(std::array{fnSpace}));
        QVERIFY(!press());
        // The next tap is there before the last one goes.
        std::unique_ptr<KeyTap> next = scene.install({fnSpace});
        scene.tap.reset();
        QVERIFY(!press());
        next.reset();
        QVERIFY(press());
        X11Connection other;
        const auto grab = xcb_grab_key_checked(other.xcb(), false, other.root(), XCB_MOD_MASK_4, KEY_SPACE + 8,
                                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        QVERIFY(!adopt(xcb_request_check(other.xcb(), grab)));
    }

    /// While some answer of the server is awaited, a key may come in with it.
    void aKeyThatComesWithAnAnswerIsJudgedAtOnce()
    {
        Scene scene({escape});
        scene.seen();
        scene.typist.press(KEY_ESC);
        scene.tap->enable();
        QTRY_COMPARE(scene.presses(), 1);
        scene.typist.release(KEY_ESC);
    }

    void aTapThatGoesWhileItsKeyIsHeldLeavesTheKeyboardFree()
    {
        Scene scene({fnSpace});
        scene.hold({KEY_LEFTMETA, KEY_SPACE});
        QTRY_COMPARE(scene.presses(), 1);
        scene.tap.reset();
        scene.letGo({KEY_SPACE, KEY_LEFTMETA});
        QCOMPARE(scene.seen(), QStringList({u"+Super_L"_s, u"-Super_L Mod4"_s}));
    }

    void aChordOfAnotherProgramIsRefused()
    {
        X11Connection other;
        // With Num Lock only: three of the four grabs succeed and must be given back.
        xcb_grab_key(other.xcb(), false, other.root(), XCB_MOD_MASK_4 | XCB_MOD_MASK_2, KEY_SPACE + 8,
                     XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        other.atoms()["the grab stands"];
        const QRegularExpression line(u"holds the shortcut Super\\+space$"_s);
        QTest::ignoreMessage(QtWarningMsg, line);
        Scene scene({escape, fnSpace});
        QVERIFY(!scene.tap);
        scene.shortcut();
        scene.typist.tap(KEY_ESC);
        QCOMPARE(scene.seen().size(), 6);

        scene.tap = scene.install({escape});
        QTest::ignoreMessage(QtWarningMsg, line);
        QVERIFY(!scene.tap->watch(std::array{fnSpace, escape}));
        scene.typist.tap(KEY_ESC);
        QCOMPARE(scene.seen(), QStringList());
        QTRY_COMPARE(scene.presses(), 1);
        scene.shortcut();
        QVERIFY(scene.seen().contains(u"+space Mod4"_s));
        QTRY_COMPARE(scene.presses(), 1);
        xcb_ungrab_key(other.xcb(), XCB_GRAB_ANY, other.root(), XCB_MOD_MASK_ANY);
        other.atoms()["the grab is gone"];
        QVERIFY(scene.tap->watch(std::array{fnSpace, escape}));
    }

    /// The shortcut is Fn + the key left of S, whatever that types; the modifiers go by their meaning.
    void aNewLayoutChangesNothing()
    {
        Scene scene({{0, KeyFlags::fn}});
        Typist::setLayout({u"us"_s, u"dvorak"_s, u"-option"_s, u"altwin:swap_alt_win"_s});
        const auto fires = [&] {
            scene.hold({KEY_LEFTALT, KEY_A});
            scene.letGo({KEY_A, KEY_LEFTALT});
            scene.seen();
            return scene.presses() > 0;
        };
        QTRY_VERIFY(fires());
    }

    void aKeyboardThatComesAndGoesChangesNothing()
    {
        Scene scene({fnSpace});
        const auto xinput = [](const QStringList &arguments) { return QProcess::execute(u"xinput"_s, arguments) == 0; };
        for (const QStringList &change :
             {QStringList{u"create-master"_s, u"second"_s}, QStringList{u"remove-master"_s, u"second keyboard"_s}}) {
            QVERIFY(xinput(change));
            scene.events.clear();
            scene.shortcut();
            QCOMPARE(scene.seen().size(), 2);
            QTRY_COMPARE(scene.presses(), 1);
        }
    }

    /// The key is let go on the keyboard that was pressed last, which may be out of use by the next time.
    void aKeyboardThatIsSwitchedOffChangesNothing()
    {
        Scene scene({fnSpace});
        scene.hold({KEY_LEFTMETA, KEY_SPACE});
        QTRY_COMPARE(scene.presses(), 1);
        scene.tap->enable(); // after the thread has seen to the press
        scene.letGo({KEY_SPACE, KEY_LEFTMETA});
        const auto run = [](const QString &program, const QStringList &arguments) {
            return QProcess::execute(program, arguments) == 0;
        };
        const QString keyboard = u"Xvfb keyboard"_s;
        QVERIFY(run(u"xinput"_s, {u"disable"_s, keyboard}));
        QVERIFY(run(u"xdotool"_s, {u"keydown"_s, u"Super_L"_s, u"keydown"_s, u"space"_s}));
        QTRY_COMPARE(scene.presses(), 2);
        QTRY_VERIFY(!scene.typist.isDown(KEY_SPACE));
        QVERIFY(run(u"xdotool"_s, {u"keyup"_s, u"space"_s, u"keyup"_s, u"Super_L"_s}));
        QVERIFY(run(u"xinput"_s, {u"enable"_s, keyboard}));
        scene.seen();
        QCOMPARE(scene.presses(), 2);
    }

    void aSecondLayoutGroupChangesNothing()
    {
        Typist::setLayout({u"us,ru"_s});
        Scene scene({fnSpace});
        scene.typist.lockGroup(1);
        scene.shortcut();
        QTRY_COMPARE(scene.presses(), 1);
        QCOMPARE(scene.seen().size(), 2);
    }
};

namespace {

/// The program that watches keys and gets stopped: writes the code of each press.
int watchKeys(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    X11Desktop desktop;
    const auto write = [](const KeyEvent &event) {
        if (event.type == KeyEventType::keyDown && !event.isAutorepeat)
            std::puts(QByteArray::number(event.keyCode).constData());
        std::fflush(stdout);
        return KeyVerdict::swallow;
    };
    const std::unique_ptr<KeyTap> tap = desktop.keyTaps().install(std::array{fnSpace, escape, fnEscape}, write);
    std::puts(tap ? "ready" : "refused");
    std::fflush(stdout);
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 2 && QByteArrayView(argv[1]) == "watch")
        return watchKeys(argc, argv);
    QCoreApplication application(argc, argv);
    KeyTapTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "KeyTapTest.moc"
