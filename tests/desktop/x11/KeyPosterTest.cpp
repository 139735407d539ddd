#include "desktop/x11/RecordingWindow.h"
#include "desktop/x11/Typist.h"
#include "platform/linux/x11/FocusedWindow.h"
#include "platform/linux/x11/SelectionOwner.h"
#include "platform/linux/x11/SelectionSender.h"
#include "platform/linux/x11/X11Desktop.h"

#include <QCoroTask>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <linux/input-event-codes.h>

namespace {

constexpr KeyChord commandV{9, KeyFlags::command};

} // namespace

/// Keystrokes into another program's window.
class KeyPosterTest : public QObject
{
    Q_OBJECT

    static bool post(X11Desktop &desktop, KeyChord chord) { return QCoro::waitFor(desktop.keyPoster().post(chord)); }

    /// Whether the window has seen Ctrl+V to its end.
    static bool hasPasted(const QStringList &log)
    {
        static const QRegularExpression release(QStringLiteral("^-v .*Control"));
        return log.indexOf(release) >= 0 && log.last().startsWith(QStringLiteral("-Control"));
    }

private Q_SLOTS:
    void pasteIsControlAndTheKeyThatTypesV_data()
    {
        QTest::addColumn<QStringList>("layout");
        QTest::addColumn<int>("group");
        QTest::addRow("dvorak") << QStringList{QStringLiteral("us"), QStringLiteral("dvorak")} << 0;
        QTest::addRow("dvorak as the second group")
            << QStringList{QStringLiteral("us,us"), QStringLiteral(",dvorak")} << 1;
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
        const QStringList expected{QStringLiteral("+Control_L"), QStringLiteral("+v Control"),
                                   QStringLiteral("-v Control"), QStringLiteral("-Control_L Control")};
        QTRY_COMPARE(window.log().size(), 4);
        QCOMPARE(window.log(), expected);
        QVERIFY(!typist.isAnyKeyDown());
    }

    void aGroupWithoutVUsesTheKeyOfAnotherGroup()
    {
        Typist::setLayout({QStringLiteral("us,ru")});
        X11Desktop desktop;
        RecordingWindow window;
        Typist typist;
        typist.lockGroup(1);
        QVERIFY(post(desktop, commandV));
        QTRY_COMPARE(window.log().size(), 4);
        QCOMPARE(window.log()[1], QStringLiteral("+Cyrillic_em Control"));
    }

    void aKeyboardWithoutVCannotPaste()
    {
        Typist::setLayout({QStringLiteral("ru")});
        X11Desktop desktop;
        const Typist typist;
        QVERIFY(!post(desktop, commandV));
        QVERIFY(!post(desktop, {130, KeyFlags::command}));
    }

    void heldModifiersAreWaitedForAndThenTakenOutOfTheWay_data()
    {
        QTest::addColumn<QList<int>>("held");
        QTest::addColumn<bool>("isReleasedInTime");
        QTest::addColumn<QString>("expected");
        const QString plain = QStringLiteral("+v Control");
        QTest::addRow("Super let go") << QList<int>{KEY_LEFTMETA} << true << plain;
        QTest::addRow("Super held on") << QList<int>{KEY_LEFTMETA} << false << plain;
        QTest::addRow("V itself held on") << QList<int>{KEY_V} << false << plain;
        QTest::addRow("Caps Lock on and Super held on")
            << QList<int>{KEY_CAPSLOCK, KEY_LEFTMETA} << false << QStringLiteral("+v Lock Control");
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
        QCOMPARE(window.log().filter(QRegularExpression(QStringLiteral("^[+]v .*Control"))), QStringList{expected});
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
        const QStringList expected{QStringLiteral("+Super_L"),   QStringLiteral("-Super_L Mod4"),
                                   QStringLiteral("+Control_L"), QStringLiteral("+v Control"),
                                   QStringLiteral("-v Control"), QStringLiteral("-Control_L Control")};
        QCOMPARE(window.log(), expected);
        typist.release(KEY_LEFTMETA);
        typist.release(KEY_SPACE);
        typist.tap(KEY_SPACE);
        QTRY_VERIFY(window.log().contains(QStringLiteral("-space")));
        QCOMPARE(window.log().filter(QStringLiteral("space")),
                 QStringList({QStringLiteral("+space"), QStringLiteral("-space")}));
        QVERIFY(!typist.isAnyKeyDown());
    }

    void aTerminalGetsItsOwnKeystroke()
    {
        X11Desktop desktop;
        RecordingWindow window("xfce4-terminal", "Xfce4-terminal");
        Typist typist;
        QVERIFY(post(desktop, commandV));
        QTRY_COMPARE(window.log().size(), 6);
        QCOMPARE(window.log()[2], QStringLiteral("+v Shift Control"));
    }

    /// Plain xterm pastes PRIMARY only; what was selected elsewhere before is back afterwards.
    void textArrivesInXterm()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("typed"));
        X11Desktop desktop;
        Typist typist;
        SelectionSender sender(desktop.connection());
        X11Connection otherConnection;
        SelectionSender otherSender(otherConnection);
        SelectionOwner other(otherConnection, otherSender, "PRIMARY");
        const xcb_atom_t utf8 = otherConnection.atoms()["UTF8_STRING"];
        other.own({{utf8, utf8, 8, "selected before"}});

        QProcess xterm;
        xterm.start(QStringLiteral("xterm"),
                    {QStringLiteral("-u8"), QStringLiteral("-e"), QStringLiteral("sh"), QStringLiteral("-c"),
                     QStringLiteral("stty -icanon; cat > \"$0\""), path});
        QTRY_VERIFY(FocusedWindow::read(desktop.connection()).className == "XTerm" && QFile::exists(path));
        const QString text = QStringLiteral("naïve 😀 שלום, second");
        desktop.pasteboard().setString(text);
        QVERIFY(post(desktop, commandV));
        const auto typed = [&] {
            QFile file(path);
            return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
        };
        QTRY_COMPARE(typed(), text);

        desktop.pasteboard().setItems({});
        QProcess xclip;
        xclip.start(QStringLiteral("xclip"),
                    {QStringLiteral("-o"), QStringLiteral("-selection"), QStringLiteral("primary")});
        QTRY_COMPARE(xclip.state(), QProcess::NotRunning);
        QCOMPARE(xclip.readAllStandardOutput(), "selected before");
        xterm.terminate();
        xterm.waitForFinished();
    }
};

QTEST_GUILESS_MAIN(KeyPosterTest)
#include "KeyPosterTest.moc"
