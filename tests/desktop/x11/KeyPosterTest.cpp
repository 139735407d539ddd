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

#include <atomic>

#include <linux/input-event-codes.h>

using namespace Qt::StringLiterals;

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
    void pasteIsControlAndTheKeyThatTypesV()
    {
        for (const uint8_t group : {0, 1}) {
            Typist::setLayout({group == 0 ? u"us"_s : u"us,us"_s, group == 0 ? u"dvorak"_s : u",dvorak"_s});
            X11Desktop desktop;
            RecordingWindow window;
            Typist typist;
            typist.lockGroup(group);
            QVERIFY(post(desktop, commandV));
            const QStringList expected{u"+Control_L"_s, u"+v Control"_s, u"-v Control"_s, u"-Control_L Control"_s};
            QTRY_COMPARE(window.log().size(), 4);
            QCOMPARE(window.log(), expected);
            QVERIFY(!typist.isAnyKeyDown());
        }
    }

    void lettersWithoutVStillPaste()
    {
        // Editors of GTK and Qt do not take Ctrl+М for Ctrl+V.
        for (const auto &[layout, expected] :
             {std::pair(u"us,ru"_s, u"+Cyrillic_em Control"_s), {u"ru"_s, u"+Insert Shift"_s}}) {
            Typist::setLayout({layout});
            X11Desktop desktop;
            RecordingWindow window;
            Typist typist;
            typist.lockGroup(layout.contains(u','));
            QVERIFY(post(desktop, commandV));
            QTRY_COMPARE(window.log().size(), 4);
            QCOMPARE(window.log()[1], expected);
            QVERIFY(!post(desktop, {130, KeyFlags::command})); // no such key
        }
    }

    void heldModifiersAreWaitedForAndThenTakenOutOfTheWay()
    {
        struct Row
        {
            QList<int> held;
            bool isReleasedInTime;
            QString expected;
        };
        for (const auto &[held, isReleasedInTime, expected] :
             {Row{{KEY_LEFTMETA}, true, u"+v Control"_s}, Row{{KEY_V}, false, u"+v Control"_s},
              Row{{KEY_CAPSLOCK, KEY_LEFTMETA}, false, u"+v Lock Control"_s}}) {
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
            const int last = held.last();
            if (isReleasedInTime)
                QTimer::singleShot(50, &desktop.connection(), [&typist, last] { typist.release(last); });
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
    }

    /// The shortcut that ended the dictation is still held when the text is pasted.
    void pasteArrivesWhileTheShortcutIsHeld()
    {
        X11Desktop desktop;
        RecordingWindow window;
        Typist typist;
        std::atomic<int> fired = 0;
        const KeyChord fnSpace{49, KeyFlags::fn};
        const auto tap = desktop.keyTaps().install({&fnSpace, 1}, [&](const KeyEvent &event) {
            fired += event.type == KeyEventType::keyDown && !event.isAutorepeat;
            return KeyVerdict::swallow;
        });
        typist.press(KEY_LEFTMETA);
        typist.press(KEY_SPACE);
        QTRY_COMPARE(fired.load(), 1);
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
    void aProgramGetsAKeystrokeThatItUnderstands()
    {
        const KeyChord fnSpace{49, KeyFlags::fn};
        const KeyChord shiftInsert{114, KeyFlags::shift};
        struct Row
        {
            const char *program;
            KeyChord shortcut;
            QString expected;
        };
        for (const auto &[program, shortcut, expected] :
             {Row{"Recorder", {9, KeyFlags::control}, u"+Insert Shift"_s},
              Row{"Recorder", shiftInsert, u"+v Control"_s}, Row{"Xfce4-terminal", fnSpace, u"+v Shift Control"_s},
              Row{"Xfce4-terminal", {9, KeyFlags::control | KeyFlags::shift}, u"+Insert Shift"_s},
              Row{"Emacs", shiftInsert, u"+y Control"_s}, Row{"Gvim", fnSpace, u"+Insert Shift"_s},
              Row{"XTerm", shiftInsert, u"+Insert Shift Control"_s}}) {
            X11Desktop desktop;
            RecordingWindow window("instance", program);
            Typist typist;
            std::atomic<int> fired = 0;
            const auto tap = desktop.keyTaps().install({&shortcut, 1}, [&fired](const KeyEvent &) {
                ++fired;
                return KeyVerdict::swallow;
            });
            QVERIFY(tap);
            QVERIFY(post(desktop, commandV));
            QTRY_VERIFY(window.log().filter(QRegularExpression(u"^-(Control|Shift)"_s)).size() > 0);
            QCOMPARE(window.log().filter(QRegularExpression(u"^[+](v|y|Insert) "_s)), QStringList{expected});
            QCOMPARE(fired.load(), 0);
        }
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
        program.start(u"/usr/bin/python3"_s, {u"" SOURCE_FOLDER "/terminal_inside.py"_s});
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
    void textArrivesInXterm()
    {
        X11Desktop desktop;
        Typist typist;
        const KeyChord shortcut{114, KeyFlags::shift}; // as its own keystroke
        const auto tap =
            desktop.keyTaps().install({&shortcut, 1}, [](const KeyEvent &) { return KeyVerdict::swallow; });
        X11Connection otherConnection;
        SelectionSender otherSender(otherConnection);
        SelectionOwner other(otherConnection, otherSender, "PRIMARY");
        const xcb_atom_t utf8 = otherConnection.atoms()["UTF8_STRING"];
        other.own({{utf8, utf8, 8, "selected before"}});

        const QTemporaryDir folder;
        const QString path = folder.filePath(u"typed"_s);
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
