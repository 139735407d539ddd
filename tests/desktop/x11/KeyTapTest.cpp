#include "desktop/x11/RecordingWindow.h"
#include "desktop/x11/Typist.h"
#include "machine/x11/X11Desktop.h"
#include "machine/x11/XcbReply.h"

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
        /// Everything that the window has seen, once a key typed now has arrived there too.
        QStringList seen()
        {
            typist.tap(KEY_F9);
            const auto isMark = [](const QString &line) { return line.startsWith(QStringLiteral("-F9")); };
            [[maybe_unused]] const bool arrived =
                QTest::qWaitFor([&] { return std::ranges::any_of(window.log(), isMark); });
            QStringList lines = window.log().filter(QRegularExpression(QStringLiteral("^[+-](?!F9)")));
            window.clear();
            return lines;
        }
    };

private Q_SLOTS:
    void theShortcutFiresOnceAndNeverReachesTheWindow()
    {
        Scene scene({fnSpace});
        QVERIFY(scene.tap);
        scene.typist.tap(KEY_CAPSLOCK);
        scene.typist.tap(KEY_NUMLOCK);
        scene.seen();
        scene.typist.press(KEY_LEFTMETA);
        scene.typist.press(KEY_SPACE);
        QTRY_COMPARE(scene.events.size(), 2);
        QVERIFY(!scene.typist.isDown(KEY_SPACE)); // and so it does not repeat
        scene.typist.release(KEY_SPACE);
        scene.typist.release(KEY_LEFTMETA);
        const QStringList seen = scene.seen();
        QCOMPARE(seen.size(), 2);
        QVERIFY(seen[0].startsWith(QStringLiteral("+Super_L")));
        QVERIFY(seen[1].startsWith(QStringLiteral("-Super_L")));
        QTRY_COMPARE(scene.presses(), 1);
        QCOMPARE(scene.events.constFirst().keyCode, 49);
        QCOMPARE(scene.events.constFirst().flags, KeyFlags::fn);
        QCOMPARE(scene.events.constLast().type, KeyEventType::keyUp);
        QVERIFY(!scene.typist.isAnyKeyDown());
    }

    void onlyTheExactModifiersFire_data()
    {
        QTest::addColumn<QStringList>("layout");
        QTest::addRow("US") << QStringList{QStringLiteral("us")};
        QTest::addRow("German, with AltGr") << QStringList{QStringLiteral("de")};
        QTest::addRow("Dvorak") << QStringList{QStringLiteral("us"), QStringLiteral("dvorak")};
        QTest::addRow("US before German") << QStringList{QStringLiteral("us,de")};
        QTest::addRow("logo keys that type Meta")
            << QStringList{QStringLiteral("us"), QStringLiteral("-option"), QStringLiteral("altwin:meta_win")};
    }

    /// Every set of held modifiers fires its own shortcut and no other, whatever locks are on.
    void onlyTheExactModifiersFire()
    {
        QFETCH(const QStringList, layout);
        const bool hasAltGr = layout.constFirst() == QStringLiteral("de");
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
                for (unsigned held = 0; held < 16; ++held) {
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
                    const int expected = flags == watched ? 1 : 0;
                    QVERIFY2(QTest::qWaitFor([&] { return scene.presses() == expected; }),
                             qPrintable(QStringLiteral("%1 held, %2 watched, lock %3")
                                            .arg(flags, 0, 16)
                                            .arg(watched, 0, 16)
                                            .arg(lock)));
                }
            }
        }
    }

    void otherKeysArriveUntouched()
    {
        Scene scene({fnSpace});
        scene.typist.tap(KEY_SPACE);
        scene.typist.press(KEY_LEFTMETA);
        scene.typist.press(KEY_LEFTSHIFT);
        scene.typist.tap(KEY_SPACE);
        scene.typist.release(KEY_LEFTSHIFT);
        scene.typist.release(KEY_LEFTMETA);
        const QStringList expected{QStringLiteral("+space"),
                                   QStringLiteral("-space"),
                                   QStringLiteral("+Super_L"),
                                   QStringLiteral("+Shift_L Mod4"),
                                   QStringLiteral("+space Shift Mod4"),
                                   QStringLiteral("-space Shift Mod4"),
                                   QStringLiteral("-Shift_L Shift Mod4"),
                                   QStringLiteral("-Super_L Mod4")};
        QCOMPARE(scene.seen(), expected);
        QVERIFY(scene.events.isEmpty());
    }

    /// Super goes up first and another key goes down and up, all while the shortcut's key is held.
    void whileTheShortcutIsHeldOtherKeysArrive()
    {
        Scene scene({fnSpace});
        scene.typist.press(KEY_LEFTMETA);
        scene.typist.press(KEY_SPACE);
        QTRY_COMPARE(scene.presses(), 1);
        scene.typist.press(KEY_X);
        scene.typist.release(KEY_X);
        scene.typist.release(KEY_LEFTMETA);
        QTRY_VERIFY(scene.window.log().contains(QStringLiteral("-Super_L Mod4")));
        scene.typist.tap(KEY_Y);
        QTRY_VERIFY(scene.window.log().contains(QStringLiteral("-y")));
        scene.typist.release(KEY_SPACE);
        scene.typist.tap(KEY_SPACE);
        const QStringList expected{QStringLiteral("+Super_L"), QStringLiteral("+x Mod4"),
                                   QStringLiteral("-x Mod4"),  QStringLiteral("-Super_L Mod4"),
                                   QStringLiteral("+y"),       QStringLiteral("-y"),
                                   QStringLiteral("+space"),   QStringLiteral("-space")};
        QCOMPARE(scene.seen(), expected);
        QTRY_COMPARE(scene.presses(), 1);
    }

    /// All at once, faster than the tap lets go: a shortcut may count as held on, and keys may come late; but no
    /// space is typed, nothing else is lost and nothing stays held.
    void keysInAHurryLeaveNothingBehind()
    {
        Scene scene({fnSpace});
        for (int round = 0; round < 20; ++round) {
            scene.typist.press(KEY_LEFTMETA);
            scene.typist.press(KEY_SPACE);
            scene.typist.tap(KEY_X);
            scene.typist.release(KEY_LEFTMETA);
            scene.typist.release(KEY_SPACE);
        }
        const auto seen = [&](const QString &what) {
            return scene.window.log().filter(QRegularExpression(u'^' + what)).size();
        };
        QTRY_COMPARE(seen(QStringLiteral("[+]x")), 20);
        QTRY_COMPARE(seen(QStringLiteral("-x")), 20);
        QTRY_COMPARE(seen(QStringLiteral("-Super_L")), 20);
        QTRY_VERIFY(scene.presses() >= 1);
        QCOMPARE(seen(QStringLiteral("[+]space")), 0);
        scene.window.clear();
        scene.typist.tap(KEY_SPACE);
        QCOMPARE(scene.seen(), QStringList({QStringLiteral("+space"), QStringLiteral("-space")}));
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
            scene.typist.press(KEY_LEFTMETA);
            scene.typist.press(KEY_SPACE);
            QTRY_COMPARE(scene.presses(), round);
            scene.tap->enable(); // after the thread has seen to the press
            scene.typist.release(KEY_SPACE);
            scene.typist.release(KEY_LEFTMETA);
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
            scene.typist.press(KEY_LEFTMETA);
            scene.typist.press(KEY_SPACE);
            const QDeadlineTimer deadline(2000);
            while (scene.typist.isDown(KEY_SPACE))
                QVERIFY(!deadline.hasExpired());
            scene.typist.tap(KEY_X);
            scene.typist.release(KEY_SPACE);
            scene.typist.release(KEY_LEFTMETA);
            scene.typist.tap(KEY_Y);
        }
        scene.typist.tap(KEY_Z);
        QVERIFY(scene.window.awaits(QStringLiteral("-z")));
        const QStringList typed{QStringLiteral("+Super_L"),      QStringLiteral("+x Mod4"), QStringLiteral("-x Mod4"),
                                QStringLiteral("-Super_L Mod4"), QStringLiteral("+y"),      QStringLiteral("-y")};
        QCOMPARE(scene.window.log(), typed + typed + QStringList({QStringLiteral("+z"), QStringLiteral("-z")}));
        QVERIFY(scene.events.isEmpty());
        QTRY_COMPARE(scene.presses(), 2);
    }

    void aStoppedProgramHoldsNobodyUp_data()
    {
        QTest::addColumn<QList<int>>("before");
        QTest::addColumn<QList<int>>("meanwhile");
        QTest::addColumn<QList<int>>("taken");
        QTest::addRow("at rest") << QList<int>{} << QList<int>{KEY_LEFTMETA, KEY_SPACE} << QList<int>{49};
        QTest::addRow("while the shortcut is held")
            << QList<int>{KEY_LEFTMETA, KEY_SPACE} << QList<int>{} << QList<int>{49};
        QTest::addRow("while Escape is watched") << QList<int>{} << QList<int>{KEY_ESC} << QList<int>{53};
        QTest::addRow("both") << QList<int>{KEY_LEFTMETA, KEY_SPACE} << QList<int>{KEY_ESC} << QList<int>{49, 53};
    }

    /// Stopped, it takes what it watches, and takes it for what it is when it goes on. All else is typed.
    void aStoppedProgramHoldsNobodyUp()
    {
        QFETCH(const QList<int>, before);
        QFETCH(const QList<int>, meanwhile);
        QFETCH(const QList<int>, taken);
        RecordingWindow window;
        Typist typist;
        QByteArray expected = "ready\n";
        QProcess program;
        program.start(QCoreApplication::applicationFilePath(), {QStringLiteral("watch")});
        const auto says = [&] { return program.peek(1000) == expected; };
        QTRY_VERIFY(says());
        for (const int key : before)
            typist.press(key);
        if (!before.isEmpty())
            expected += "49\n";
        QTRY_VERIFY(says());

        const auto pid = static_cast<pid_t>(program.processId());
        QCOMPARE(::kill(pid, SIGSTOP), 0);
        siginfo_t stopped{};
        QCOMPARE(::waitid(P_PID, static_cast<id_t>(pid), &stopped, WSTOPPED | WNOWAIT), 0);
        for (const int key : meanwhile)
            typist.press(key);
        for (const int key : before + meanwhile)
            typist.release(key);
        for (const int key : {KEY_H, KEY_I})
            typist.tap(key);
        QVERIFY(window.awaits(QStringLiteral("-i")));
        const QStringList typed = window.log().filter(QRegularExpression(QStringLiteral("^[+-](h|i|space|Escape)\\b")));
        QCOMPARE(typed,
                 QStringList({QStringLiteral("+h"), QStringLiteral("-h"), QStringLiteral("+i"), QStringLiteral("-i")}));
        QVERIFY(says());

        QCOMPARE(::kill(pid, SIGCONT), 0);
        expected = "ready\n";
        for (const int code : taken)
            expected += QByteArray::number(code) + '\n';
        QTRY_VERIFY2(says(), program.peek(1000));
        program.kill();
        QVERIFY(program.waitForFinished());
    }

    void aPassedChordArrives()
    {
        Scene scene({escape});
        scene.verdict = KeyVerdict::pass;
        scene.typist.tap(KEY_ESC);
        QTRY_COMPARE(scene.window.log(), QStringList({QStringLiteral("+Escape"), QStringLiteral("-Escape")}));
        QTRY_COMPARE(scene.presses(), 1);
    }

    void escapeIsTakenOnlyWhileWatched()
    {
        Scene scene({fnSpace});
        const QStringList typed{QStringLiteral("+Escape"), QStringLiteral("-Escape")};
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
        scene.typist.press(KEY_LEFTMETA);
        scene.typist.press(KEY_SPACE);
        QTRY_COMPARE(scene.presses(), 1);
        scene.typist.press(KEY_ESC);
        QTRY_COMPARE(scene.presses(), 2);
        scene.typist.release(KEY_SPACE);
        scene.typist.release(KEY_ESC);
        scene.typist.tap(KEY_SPACE);
        QTRY_COMPARE(scene.presses(), 3);
        scene.typist.release(KEY_LEFTMETA);
        QCOMPARE(scene.seen(), QStringList({QStringLiteral("+Super_L"), QStringLiteral("-Super_L Mod4")}));
    }

    void suspendedOrRemovedTheShortcutTypes()
    {
        Scene scene({fnSpace});
        const auto press = [&] {
            scene.typist.press(KEY_LEFTMETA);
            scene.typist.tap(KEY_SPACE);
            scene.typist.release(KEY_LEFTMETA);
            return scene.seen().contains(QStringLiteral("+space Mod4"));
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
        scene.typist.press(KEY_LEFTMETA);
        scene.typist.press(KEY_SPACE);
        QTRY_COMPARE(scene.presses(), 1);
        scene.tap.reset();
        scene.typist.release(KEY_SPACE);
        scene.typist.release(KEY_LEFTMETA);
        QCOMPARE(scene.seen(), QStringList({QStringLiteral("+Super_L"), QStringLiteral("-Super_L Mod4")}));
    }

    void aChordOfAnotherProgramIsRefused()
    {
        X11Connection other;
        // With Num Lock only: three of the four grabs succeed and must be given back.
        xcb_grab_key(other.xcb(), false, other.root(), XCB_MOD_MASK_4 | XCB_MOD_MASK_2, KEY_SPACE + 8,
                     XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        other.atoms()["the grab stands"];
        const QRegularExpression line(QStringLiteral("holds the shortcut Super\\+space$"));
        QTest::ignoreMessage(QtWarningMsg, line);
        Scene scene({escape, fnSpace});
        QVERIFY(!scene.tap);
        scene.typist.press(KEY_LEFTMETA);
        scene.typist.tap(KEY_SPACE);
        scene.typist.release(KEY_LEFTMETA);
        scene.typist.tap(KEY_ESC);
        QCOMPARE(scene.seen().size(), 6);

        scene.tap = scene.install({escape});
        QTest::ignoreMessage(QtWarningMsg, line);
        QVERIFY(!scene.tap->watch(std::array{fnSpace, escape}));
        scene.typist.tap(KEY_ESC);
        QCOMPARE(scene.seen(), QStringList());
        QTRY_COMPARE(scene.presses(), 1);
        scene.typist.press(KEY_LEFTMETA);
        scene.typist.tap(KEY_SPACE);
        scene.typist.release(KEY_LEFTMETA);
        QVERIFY(scene.seen().contains(QStringLiteral("+space Mod4")));
        QTRY_COMPARE(scene.presses(), 1);
        xcb_ungrab_key(other.xcb(), XCB_GRAB_ANY, other.root(), XCB_MOD_MASK_ANY);
        other.atoms()["the grab is gone"];
        QVERIFY(scene.tap->watch(std::array{fnSpace, escape}));
    }

    void aNewLayoutChangesNothing_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addRow("dvorak") << QStringList{QStringLiteral("us"), QStringLiteral("dvorak")};
        QTest::addRow("Alt and Super swapped")
            << QStringList{QStringLiteral("us"), QStringLiteral("-option"), QStringLiteral("altwin:swap_alt_win")};
    }

    /// The shortcut is Fn + the key left of S, whatever that types; the modifiers go by their meaning.
    void aNewLayoutChangesNothing()
    {
        QFETCH(const QStringList, arguments);
        Scene scene({{0, KeyFlags::fn}});
        Typist::setLayout(arguments);
        const int superKey = arguments.size() == 3 ? KEY_LEFTALT : KEY_LEFTMETA;
        const auto fires = [&] {
            scene.typist.press(superKey);
            scene.typist.tap(KEY_A);
            scene.typist.release(superKey);
            scene.seen();
            return scene.presses() > 0;
        };
        QTRY_VERIFY(fires());
    }

    /// A menu holds the whole keyboard: its keys are its own, and the shortcut is back when it closes.
    void anOpenMenuKeepsItsKeys()
    {
        Scene scene({fnSpace});
        const auto chord = [&] {
            scene.typist.press(KEY_LEFTMETA);
            scene.typist.tap(KEY_SPACE);
            scene.typist.release(KEY_LEFTMETA);
        };
        X11Connection menu;
        const auto cookie = xcb_grab_keyboard(menu.xcb(), false, menu.root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
                                              XCB_GRAB_MODE_ASYNC);
        const auto reply = adopt(xcb_grab_keyboard_reply(menu.xcb(), cookie, nullptr));
        QCOMPARE(reply->status, XCB_GRAB_STATUS_SUCCESS);
        chord();
        xcb_ungrab_keyboard(menu.xcb(), XCB_CURRENT_TIME);
        menu.atoms()["the menu is closed"];
        scene.seen();
        QCOMPARE(scene.presses(), 0);
        chord();
        QTRY_COMPARE(scene.presses(), 1);
        QTRY_VERIFY(!scene.typist.isAnyKeyDown());
    }

    void aKeyboardThatComesAndGoesChangesNothing()
    {
        Scene scene({fnSpace});
        const auto xinput = [](const QStringList &arguments) {
            return QProcess::execute(QStringLiteral("xinput"), arguments) == 0;
        };
        for (const QStringList &change :
             {QStringList{QStringLiteral("create-master"), QStringLiteral("second")},
              QStringList{QStringLiteral("remove-master"), QStringLiteral("second keyboard")}}) {
            QVERIFY(xinput(change));
            scene.events.clear();
            scene.typist.press(KEY_LEFTMETA);
            scene.typist.tap(KEY_SPACE);
            scene.typist.release(KEY_LEFTMETA);
            QCOMPARE(scene.seen().size(), 2);
            QTRY_COMPARE(scene.presses(), 1);
        }
    }

    /// The key is let go on the keyboard that was pressed last, which may be out of use by the next time.
    void aKeyboardThatIsSwitchedOffChangesNothing()
    {
        Scene scene({fnSpace});
        scene.typist.press(KEY_LEFTMETA);
        scene.typist.press(KEY_SPACE);
        QTRY_COMPARE(scene.presses(), 1);
        scene.tap->enable(); // after the thread has seen to the press
        scene.typist.release(KEY_SPACE);
        scene.typist.release(KEY_LEFTMETA);
        const auto run = [](const QString &program, const QStringList &arguments) {
            return QProcess::execute(program, arguments) == 0;
        };
        const QString keyboard = QStringLiteral("Xvfb keyboard");
        QVERIFY(run(QStringLiteral("xinput"), {QStringLiteral("disable"), keyboard}));
        QVERIFY(run(QStringLiteral("xdotool"), {QStringLiteral("keydown"), QStringLiteral("Super_L"),
                                                QStringLiteral("keydown"), QStringLiteral("space")}));
        QTRY_COMPARE(scene.presses(), 2);
        QTRY_VERIFY(!scene.typist.isDown(KEY_SPACE));
        QVERIFY(run(QStringLiteral("xdotool"), {QStringLiteral("keyup"), QStringLiteral("space"),
                                                QStringLiteral("keyup"), QStringLiteral("Super_L")}));
        QVERIFY(run(QStringLiteral("xinput"), {QStringLiteral("enable"), keyboard}));
        scene.seen();
        QCOMPARE(scene.presses(), 2);
    }

    void aSecondLayoutGroupChangesNothing()
    {
        Typist::setLayout({QStringLiteral("us,ru")});
        Scene scene({fnSpace});
        scene.typist.lockGroup(1);
        scene.typist.press(KEY_LEFTMETA);
        scene.typist.tap(KEY_SPACE);
        scene.typist.release(KEY_LEFTMETA);
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
