#include "desktop/x11/RecordingWindow.h"
#include "desktop/x11/Typist.h"
#include "machine/x11/FocusedWindow.h"
#include "machine/x11/SelectionOwner.h"
#include "machine/x11/SelectionSender.h"
#include "machine/x11/X11Connection.h"
#include "machine/x11/X11Desktop.h"

#include <QCoroTask>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <linux/input-event-codes.h>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(KeyChord)

namespace {

constexpr KeyChord commandV{9, KeyFlags::command};

} // namespace

/// Keystrokes into another program's window.
class KeyPosterTest : public QObject
{
    Q_OBJECT

    static bool post(X11Desktop &desktop, KeyChord chord)
    {
        return QCoro::waitFor(desktop.keyPoster().post(chord, [] { return true; }));
    }

    /// Whether the window has seen Ctrl+V to its end.
    static bool hasPasted(const QStringList &log)
    {
        static const QRegularExpression release(u"^-v .*Control"_s);
        return log.indexOf(release) >= 0 && log.last().startsWith(u"-Control"_s);
    }

private Q_SLOTS:
    void pasteIsControlAndTheKeyThatTypesV_data()
    {
        QTest::addColumn<QStringList>("layout");
        QTest::addColumn<int>("group");
        QTest::addRow("dvorak") << QStringList{u"us"_s, u"dvorak"_s} << 0;
        QTest::addRow("dvorak as the second group") << QStringList{u"us,us"_s, u",dvorak"_s} << 1;
    }

    void pasteIsControlAndTheKeyThatTypesV()
    {
        QFETCH(const QStringList, layout);
        QFETCH(const int, group);
        Typist::setLayout(layout);
        X11Desktop desktop;
        RecordingWindow window;
        Typist typist;
        typist.lockGroup(static_cast<uint8_t>(group));
        QVERIFY(post(desktop, commandV));
        const QStringList expected{u"+Control_L"_s, u"+v Control"_s, u"-v Control"_s, u"-Control_L Control"_s};
        QTRY_COMPARE(window.log().size(), 4);
        QCOMPARE(window.log(), expected);
        QVERIFY(!typist.isAnyKeyDown());
    }

    void lettersWithoutVStillPaste_data()
    {
        QTest::addColumn<QString>("layout");
        QTest::addColumn<int>("group");
        QTest::addColumn<QString>("expected");
        QTest::addRow("in another group") << u"us,ru"_s << 1 << u"+Cyrillic_em Control"_s;
        // Editors of GTK and Qt do not take Ctrl+М for Ctrl+V.
        QTest::addRow("in no group, Russian") << u"ru"_s << 0 << u"+Insert Shift"_s;
        QTest::addRow("in no group, Greek") << u"gr"_s << 0 << u"+Insert Shift"_s;
    }

    void lettersWithoutVStillPaste()
    {
        QFETCH(const QString, layout);
        QFETCH(const int, group);
        QFETCH(const QString, expected);
        Typist::setLayout({layout});
        X11Desktop desktop;
        RecordingWindow window;
        Typist typist;
        typist.lockGroup(static_cast<uint8_t>(group));
        QVERIFY(post(desktop, commandV));
        QTRY_COMPARE(window.log().size(), 4);
        QCOMPARE(window.log()[1], expected);
        QVERIFY(!post(desktop, {130, KeyFlags::command})); // no such key
    }

    void heldModifiersAreWaitedForAndThenTakenOutOfTheWay_data()
    {
        QTest::addColumn<QList<int>>("held");
        QTest::addColumn<bool>("isReleasedInTime");
        QTest::addColumn<QString>("expected");
        const QString plain = u"+v Control"_s;
        QTest::addRow("Super let go") << QList<int>{KEY_LEFTMETA} << true << plain;
        QTest::addRow("Super held on") << QList<int>{KEY_LEFTMETA} << false << plain;
        QTest::addRow("V itself held on") << QList<int>{KEY_V} << false << plain;
        QTest::addRow("Caps Lock on and Super held on")
            << QList<int>{KEY_CAPSLOCK, KEY_LEFTMETA} << false << u"+v Lock Control"_s;
    }

    void heldModifiersAreWaitedForAndThenTakenOutOfTheWay()
    {
        QFETCH(const QList<int>, held);
        QFETCH(const bool, isReleasedInTime);
        QFETCH(const QString, expected);
        X11Desktop desktop;
        RecordingWindow window;
        Typist typist;
        for (const int key : held) {
            if (key == KEY_CAPSLOCK)
                typist.tap(key);
            else
                typist.press(key);
        }
        const uint16_t locks = typist.lockedModifiers();
        if (isReleasedInTime)
            QTimer::singleShot(50, &desktop.connection(), [&] { typist.release(held.last()); });
        QVERIFY(post(desktop, commandV));
        QTRY_VERIFY(hasPasted(window.log()));
        QCOMPARE(window.log().filter(QRegularExpression(u"^[+]v .*Control"_s)), QStringList{expected});
        QVERIFY(!typist.isAnyKeyDown());
        // The fingers come up at last.
        for (const int key : held)
            typist.release(key);
        QVERIFY(!typist.isAnyKeyDown());
        QCOMPARE(typist.lockedModifiers(), locks);
    }

    /// The shortcut that ended the dictation is still held when the text is pasted.
    void pasteArrivesWhileTheShortcutIsHeld()
    {
        X11Desktop desktop;
        RecordingWindow window;
        Typist typist;
        int fired = 0;
        const KeyChord fnSpace{49, KeyFlags::fn};
        const auto tap = desktop.keyTaps().install({&fnSpace, 1}, [&](const KeyEvent &event) {
            fired += event.type == KeyEventType::keyDown && !event.isAutorepeat;
            return KeyVerdict::swallow;
        });
        typist.press(KEY_LEFTMETA);
        typist.press(KEY_SPACE);
        QTRY_COMPARE(fired, 1);
        QVERIFY(post(desktop, commandV));
        QTRY_VERIFY(hasPasted(window.log()));
        const QStringList expected{u"+Super_L"_s,   u"-Super_L Mod4"_s, u"+Control_L"_s,
                                   u"+v Control"_s, u"-v Control"_s,    u"-Control_L Control"_s};
        QCOMPARE(window.log(), expected);
        typist.release(KEY_LEFTMETA);
        typist.release(KEY_SPACE);
        typist.tap(KEY_SPACE);
        QTRY_VERIFY(window.log().contains(u"-space"_s));
        QCOMPARE(window.log().filter(u"space"_s), QStringList({u"+space"_s, u"-space"_s}));
        QVERIFY(!typist.isAnyKeyDown());
    }

    /// And one that does not come back to us as the shortcut.
    void aProgramGetsAKeystrokeThatItUnderstands_data()
    {
        QTest::addColumn<QByteArray>("program");
        QTest::addColumn<KeyChord>("shortcut");
        QTest::addColumn<QString>("expected");
        const KeyChord fnSpace{49, KeyFlags::fn};
        const KeyChord controlV{9, KeyFlags::control};
        const KeyChord controlShiftV{9, KeyFlags::control | KeyFlags::shift};
        const KeyChord shiftInsert{114, KeyFlags::shift};
        const auto row = [](const char *program, const KeyChord &shortcut, const char *expected) {
            QTest::addRow("%s %lld %llx", program, shortcut.keyCode, shortcut.flags)
                << QByteArray(program) << shortcut << QString::fromLatin1(expected);
        };
        row("Recorder", controlV, "+Insert Shift");
        row("Recorder", shiftInsert, "+v Control");
        row("Xfce4-terminal", fnSpace, "+v Shift Control");
        row("Xfce4-terminal", controlShiftV, "+Insert Shift");
        row("Emacs", fnSpace, "+Insert Shift");
        row("Emacs", shiftInsert, "+y Control");
        row("Gvim", fnSpace, "+Insert Shift");
        row("XTerm", shiftInsert, "+Insert Shift Control");
    }

    void aProgramGetsAKeystrokeThatItUnderstands()
    {
        QFETCH(const QByteArray, program);
        QFETCH(const KeyChord, shortcut);
        QFETCH(const QString, expected);
        X11Desktop desktop;
        RecordingWindow window("instance", program);
        Typist typist;
        int fired = 0;
        const auto tap = desktop.keyTaps().install({&shortcut, 1}, [&](const KeyEvent &) {
            ++fired;
            return KeyVerdict::swallow;
        });
        QVERIFY(tap);
        QVERIFY(post(desktop, commandV));
        QTRY_VERIFY(window.log().filter(QRegularExpression(u"^-(Control|Shift)"_s)).size() > 0);
        const QRegularExpression key(u"^[+](v|y|Insert) "_s);
        QCOMPARE(window.log().filter(key), QStringList{expected});
        QCOMPARE(fired, 0);
    }

    /// A program that is no terminal, with a terminal in it; it tells screen readers.
    void aTerminalInsideAnotherProgramGetsItsKeystroke()
    {
        QProcess bus;
        bus.start(u"/usr/libexec/at-spi-bus-launcher"_s, {u"--launch-immediately"_s});
        X11Desktop desktop;
        Typist typist;
        const xcb_atom_t address = desktop.connection().atoms()["AT_SPI_BUS"];
        QTRY_VERIFY(!WindowProperty::read(desktop.connection(), desktop.connection().root(), address).bytes.isEmpty());
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(u"NO_AT_BRIDGE"_s);
        program.setProcessEnvironment(environment);
        program.start(u"/usr/bin/python3"_s, {QStringLiteral(SOURCE_FOLDER "/terminal_inside.py")});
        QTRY_COMPARE(FocusedWindow::read(desktop.connection()).className, "Terminal_inside.py");
        const QStringList expected{u"entry Control+v"_s, u"terminal Control+Shift+v"_s};
        QByteArray seen;
        connect(&program, &QProcess::readyRead, &program, [&] { seen += program.readAll(); });
        for (const QString &line : expected) {
            const auto isPastedRightly = [&] {
                seen.clear();
                desktop.keyPoster().prepare();
                QTest::qWait(50); // as long as a paste waits anyway
                return post(desktop, commandV) && QTest::qWaitFor([&] { return seen.endsWith('\n'); }, 500) &&
                       QString::fromUtf8(seen).trimmed() == line;
            };
            QTRY_VERIFY2(isPastedRightly(), seen.constData()); // its window tells of itself a little later
            typist.tap(KEY_TAB);
        }
        for (QProcess *process : {&program, &bus}) {
            process->terminate();
            process->waitForFinished();
        }
    }

    /// Plain xterm pastes PRIMARY only; what was selected elsewhere before is back afterwards.
    void textArrivesInXterm_data()
    {
        QTest::addColumn<bool>("isItsKeystrokeTheShortcut");
        QTest::addRow("by its own keystroke") << false;
        QTest::addRow("by another") << true;
    }

    void textArrivesInXterm()
    {
        QFETCH(const bool, isItsKeystrokeTheShortcut);
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"typed"_s);
        X11Desktop desktop;
        Typist typist;
        const KeyChord shortcut{114, KeyFlags::shift};
        const auto tap =
            isItsKeystrokeTheShortcut
                ? desktop.keyTaps().install({&shortcut, 1}, [](const KeyEvent &) { return KeyVerdict::swallow; })
                : nullptr;
        X11Connection otherConnection;
        SelectionSender otherSender(otherConnection);
        SelectionOwner other(otherConnection, otherSender, "PRIMARY");
        const xcb_atom_t utf8 = otherConnection.atoms()["UTF8_STRING"];
        other.own({{utf8, utf8, 8, "selected before"}});

        QProcess xterm;
        xterm.start(u"xterm"_s, {u"-u8"_s, u"-e"_s, u"sh"_s, u"-c"_s, u"stty -icanon; cat > \"$0\""_s, path});
        QTRY_VERIFY(FocusedWindow::read(desktop.connection()).className == "XTerm" && QFile::exists(path));
        const QString text = u"naïve 😀 שלום, second"_s;
        desktop.pasteboard().setString(text);
        QVERIFY(post(desktop, commandV));
        const auto typed = [&] {
            QFile file(path);
            return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
        };
        QTRY_COMPARE(typed(), text);

        desktop.pasteboard().setItems({});
        QProcess xclip;
        xclip.start(u"xclip"_s, {u"-o"_s, u"-selection"_s, u"primary"_s});
        QTRY_COMPARE(xclip.state(), QProcess::NotRunning);
        QCOMPARE(xclip.readAllStandardOutput(), "selected before");
        xterm.terminate();
        xterm.waitForFinished();
    }
};

QTEST_GUILESS_MAIN(KeyPosterTest)
#include "KeyPosterTest.moc"
