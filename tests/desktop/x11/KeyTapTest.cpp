#include "desktop/x11/RecordingWindow.h"
#include "desktop/x11/Typist.h"
#include "platform/linux/x11/X11Desktop.h"
#include "platform/linux/x11/XcbReply.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <array>

#include <linux/input-event-codes.h>

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
        QList<KeyEvent> events;
        KeyVerdict verdict = KeyVerdict::swallow;
        std::unique_ptr<KeyTap> tap;

        explicit Scene(const QList<KeyChord> &chords) { tap = install(chords); }

        std::unique_ptr<KeyTap> install(const QList<KeyChord> &chords)
        {
            return desktop.keyTaps().install(chords, [this](const KeyEvent &event) {
                events.append(event);
                return verdict;
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
        QTRY_VERIFY(scene.events.size() >= 4); // the key repeats
        scene.typist.release(KEY_SPACE);
        scene.typist.release(KEY_LEFTMETA);
        const QStringList seen = scene.seen();
        QCOMPARE(seen.size(), 2);
        QVERIFY(seen[0].startsWith(QStringLiteral("+Super_L")));
        QVERIFY(seen[1].startsWith(QStringLiteral("-Super_L")));
        QCOMPARE(scene.presses(), 1);
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
                    QVERIFY2(scene.presses() == (flags == watched ? 1 : 0),
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
        QCOMPARE(scene.presses(), 1);
    }

    /// The modifier's release must not turn the held key into typed spaces.
    void aHeldKeyTypesNothingOnceTheModifierIsUp()
    {
        Scene scene({fnSpace});
        scene.typist.press(KEY_LEFTMETA);
        scene.typist.press(KEY_SPACE);
        QTRY_COMPARE(scene.presses(), 1);
        scene.typist.release(KEY_LEFTMETA);
        QTRY_VERIFY(scene.events.constLast().isAutorepeat && scene.events.constLast().flags == 0);
        scene.typist.release(KEY_SPACE);
        QCOMPARE(scene.seen(), QStringList({QStringLiteral("+Super_L"), QStringLiteral("-Super_L Mod4")}));
        QCOMPARE(scene.presses(), 1);
    }

    /// All at once, faster than the tap answers: a shortcut may count as held on, and the window may see a
    /// release too many; but no space is typed, nothing else is lost and nothing stays held.
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
        const QStringList seen = scene.seen();
        QVERIFY(scene.presses() >= 1);
        QCOMPARE(seen.filter(QRegularExpression(QStringLiteral("^[+]x"))).size(), 20);
        QCOMPARE(seen.filter(QRegularExpression(QStringLiteral("^-Super_L"))).size(), 20);
        QVERIFY(seen.filter(QRegularExpression(QStringLiteral("^[+]space"))).isEmpty());
        scene.typist.tap(KEY_SPACE);
        QCOMPARE(scene.seen(), QStringList({QStringLiteral("+space"), QStringLiteral("-space")}));
    }

    void aPassedChordArrives()
    {
        Scene scene({escape});
        scene.verdict = KeyVerdict::pass;
        scene.typist.tap(KEY_ESC);
        QCOMPARE(scene.seen(), QStringList({QStringLiteral("+Escape"), QStringLiteral("-Escape")}));
        QCOMPARE(scene.events.size(), 1);
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
        QCOMPARE(scene.presses(), 1);
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
        scene.desktop.connection().atoms()["an answer"];
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
        QCOMPARE(scene.presses(), 1);
        scene.typist.press(KEY_LEFTMETA);
        scene.typist.tap(KEY_SPACE);
        scene.typist.release(KEY_LEFTMETA);
        QVERIFY(scene.seen().contains(QStringLiteral("+space Mod4")));
        QCOMPARE(scene.presses(), 1);
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
        Typist::setLayout({QStringLiteral("-option"), QString()});
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
            QCOMPARE(scene.presses(), 1);
        }
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

QTEST_GUILESS_MAIN(KeyTapTest)
#include "KeyTapTest.moc"
