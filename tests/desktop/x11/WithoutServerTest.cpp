#include "machine/x11/X11Desktop.h"

#include <QCoroTask>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr KeyChord fnSpace{49, KeyFlags::fn};

} // namespace

/// A session without an X server, and one whose server goes away.
class WithoutServerTest : public QObject
{
    Q_OBJECT

    static std::unique_ptr<KeyTap> install(X11Desktop &desktop)
    {
        return desktop.keyTaps().install({&fnSpace, 1}, [](const KeyEvent &) { return KeyVerdict::swallow; });
    }

    static void theClipboardIsKept(X11Desktop &desktop)
    {
        Pasteboard &pasteboard = desktop.pasteboard();
        const qint64 count = pasteboard.changeCount();
        pasteboard.setString(u"kept"_s);
        QVERIFY(pasteboard.changeCount() > count);
        const QList<PasteboardItem> items = QCoro::waitFor(pasteboard.items(5s));
        QCOMPARE(items.size(), 1);
        QCOMPARE(items.constFirst().constFirst().bytes, "kept");
        pasteboard.setItems({});
        QVERIFY(QCoro::waitFor(pasteboard.items(5s)).isEmpty());
        pasteboard.setItems(items);
        QCOMPARE(QCoro::waitFor(pasteboard.items(5s)), items);
    }

private Q_SLOTS:
    void nothingWorksAndNothingBreaks()
    {
        X11Desktop desktop(":987");
        QVERIFY(!desktop.trust().isTrusted());
        QVERIFY(!install(desktop));
        QVERIFY(!QCoro::waitFor(desktop.keyPoster().post({9, KeyFlags::command}, [] { return true; })));
        theClipboardIsKept(desktop);
    }

    void whatAWaylandSessionLeftBehindCostsNoTrust()
    {
        qputenv("WAYLAND_DISPLAY", "wayland-0");
        X11Desktop desktop;
        QVERIFY(desktop.trust().isTrusted());
        QVERIFY(install(desktop));
        qunsetenv("WAYLAND_DISPLAY");
    }

    void aServerThatGoesIsBorne()
    {
        QProcess server;
        server.start(u"Xvfb"_s, {u"-displayfd"_s, u"1"_s, u"-nolisten"_s, u"tcp"_s, u"-noreset"_s});
        QVERIFY(server.waitForReadyRead());
        X11Desktop desktop(":" + server.readAllStandardOutput().trimmed());
        QVERIFY(desktop.trust().isTrusted());
        const std::unique_ptr<KeyTap> tap = install(desktop);
        QVERIFY(tap);
        desktop.pasteboard().setString(u"before"_s);

        QSignalSpy lost(&desktop.connection(), &X11Connection::lost);
        server.kill();
        QTRY_COMPARE(lost.count(), 1);
        QVERIFY(!desktop.trust().isTrusted());
        QVERIFY(!tap->watch({&fnSpace, 1}));
        tap->enable();
        QVERIFY(!install(desktop));
        QVERIFY(!QCoro::waitFor(desktop.keyPoster().post({9, KeyFlags::command}, [] { return true; })));
        QCOMPARE(QCoro::waitFor(desktop.pasteboard().items(5s)).constFirst().constFirst().bytes, "before");
        theClipboardIsKept(desktop);
        server.waitForFinished();
    }
};

QTEST_GUILESS_MAIN(WithoutServerTest)
#include "WithoutServerTest.moc"
