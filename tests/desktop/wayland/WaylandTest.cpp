#include "desktop/program/Desk.h"
#include "desktop/program/PanelStandIn.h"
#include "desktop/wayland/Compositor.h"
#include "machine/desktop/PasteboardThread.h"
#include "machine/wayland/WaylandPasteboard.h"

#include <QCoroTask>
#include <QDBusConnection>
#include <QFile>
#include <QJsonObject>
#include <QTest>
#include <QTimer>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString clip = u"sense_and_sensibility_01_austen_64kb-0880"_s;
const QString program = u"" PREFIX "/bin/sayvane"_s;
const QStringList profile{u"--profile"_s, u"run"_s};

// This thread does nothing else meanwhile, like one whose window wants to paste.
QByteArray pasted(const QString &type)
{
    QProcess reader;
    reader.setProcessChannelMode(QProcess::MergedChannels);
    reader.start(u"wl-paste"_s, {u"--no-newline"_s, u"--type"_s, type});
    reader.waitForFinished(5000);
    return reader.readAll();
}

} // namespace

/// A desktop's notifications, as far as a program can tell.
class NotificationStandIn final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
public:
    NotificationStandIn()
    {
        QDBusConnection bus = QDBusConnection::sessionBus();
        bus.registerObject(u"/org/freedesktop/Notifications"_s, this, QDBusConnection::ExportScriptableSlots);
        bus.registerService(u"org.freedesktop.Notifications"_s);
    }

    /// All texts so far, and whether one stands there now.
    QStringList texts;
    bool isShowing = false;

public Q_SLOTS:
    Q_SCRIPTABLE uint Notify(const QString &, uint replaced, const QString &, const QString &, const QString &body,
                             const QStringList &, const QVariantMap &, int)
    {
        texts.append(body);
        isShowing = true;
        return replaced != 0 ? replaced : static_cast<uint>(texts.size());
    }
    Q_SCRIPTABLE void CloseNotification(uint) { isShowing = false; }
};

/// The program on Wayland: the clipboard that compositors share, and a desktop that lets it do nothing.
class WaylandTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_firstDisplay = qgetenv("DISPLAY"); }
    void cleanup()
    {
        qunsetenv("WAYLAND_DISPLAY");
        qputenv("DISPLAY", m_firstDisplay);
    }

    void theClipboardIsShared()
    {
        const Compositor compositor(false);
        if (!compositor.objection().isEmpty())
            QSKIP(compositor.objection());
        enter(compositor);
        Desk desk;
        const std::unique_ptr<PasteboardThread> made = WaylandPasteboard::inThread();
        QVERIFY(made);
        PasteboardThread &pasteboard = *made;

        const QByteArray large(1'000'000, 'x'); // more than a pipe holds
        qint64 count = pasteboard.changeCount();
        desk.run(u"wl-copy"_s, {u"--type"_s, u"text/html"_s}, large);
        QTRY_VERIFY(pasteboard.changeCount() > count);
        QVERIFY(!pasteboard.isOurs());
        QList<PasteboardItem> theirs; // told once without anything, at first
        QTRY_VERIFY(!(theirs = QCoro::waitFor(pasteboard.items(5s))).isEmpty());
        QCOMPARE(theirs.size(), 1);
        QVERIFY(theirs.first().contains({u"text/html"_s, large}));

        pasteboard.setString(u"ours"_s);
        count = pasteboard.changeCount();
        const qint64 reads = pasteboard.readCount();
        QVERIFY(pasteboard.isOurs());
        QCOMPARE(pasted(u"x-kde-passwordManagerHint"_s), QByteArray("secret"));
        QCOMPARE(pasteboard.readCount(), reads);
        QCOMPARE(pasted(u"text/plain"_s), QByteArray("ours"));
        QCOMPARE(pasteboard.readCount(), reads + 1);
        QCOMPARE(pasteboard.changeCount(), count);
        pasteboard.setItems(theirs);
        QCOMPARE(pasted(u"text/html"_s), large);

        // What its owner has been asked for comes, however late, and although the clipboard is ours by then.
        count = pasteboard.changeCount();
        QProcess *owner = desk.open(u"wl-copy"_s, {u"--foreground"_s, u"--type"_s, u"image/png"_s, u"pixels"_s});
        QTRY_VERIFY(pasteboard.changeCount() > count);
        QCOMPARE(::kill(static_cast<pid_t>(owner->processId()), SIGSTOP), 0);
        const QCoro::Task<QList<PasteboardItem>> slow = pasteboard.items(5s);
        pasteboard.setString(u"ours"_s);
        QTimer::singleShot(800ms, owner, [owner] { ::kill(static_cast<pid_t>(owner->processId()), SIGCONT); });
        const PasteboardItem pixels{{u"image/png"_s, "pixels"}};
        QCOMPARE(QCoro::waitFor(slow), QList<PasteboardItem>{pixels});

        count = pasteboard.changeCount();
        desk.run(u"wl-copy"_s, {u"--clear"_s});
        QTRY_VERIFY(pasteboard.changeCount() > count);
        QVERIFY(QCoro::waitFor(pasteboard.items(5s)).isEmpty());
    }

    // weston gives the clipboard only to the program that has the keyboard. It shows itself in a window here.
    void aClipboardOutOfReachIsNotClaimed()
    {
        Desk desk;
        const QByteArray socket = qgetenv("XDG_RUNTIME_DIR") + "/weston";
        desk.open(u"weston"_s, {u"--backend=x11-backend.so"_s, u"--use-pixman"_s, u"--no-config"_s, u"--idle-time=0"_s,
                                u"--socket=weston"_s, u"--width=1024"_s, u"--height=700"_s});
        QVERIFY(Desk::eventually([&] { return QFile::exists(QString::fromUtf8(socket)); }));
        qputenv("WAYLAND_DISPLAY", socket);
        qunsetenv("DISPLAY");
        PanelStandIn panel;
        NotificationStandIn notifications;
        qputenv("WAYLAND_DEBUG", "client"); // what it asks the compositor for is in its log
        desk.startSayvane({}, {});
        qunsetenv("WAYLAND_DEBUG");
        QVERIFY2(Desk::eventually([&] { return !panel.item().isEmpty(); }), desk.log());
        QVERIFY2(panel.menu().contains(u"(⚠️ Shortcut inactive: see Settings)"_s), qPrintable(panel.menu()));
        panel.click(u"Start Dictation"_s);
        QVERIFY(desk.logsNext("flow: recording"));
        QTRY_COMPARE(notifications.texts, QStringList{u"Listening"_s});
        desk.say(clip);
        panel.click(u"Stop & Transcribe"_s);
        QVERIFY(desk.logsNext("flow: idle"));
        const QByteArray text = desk.history().first().toObject().value("text"_L1).toString().toUtf8();
        const QString notice =
            u"(⚠️ Not copied: this desktop's clipboard is out of reach. Open Sayvane to copy the text.)"_s;
        QVERIFY2(panel.menu().contains(notice), qPrintable(panel.menu()));
        QVERIFY(!desk.log().contains(text));
        QTRY_VERIFY(!notifications.isShowing);
        QCOMPARE(pasted(u"text/plain"_s), QByteArray("No selection\n"));

        panel.click(u"Copy Last Transcript"_s);
        QVERIFY(desk.logsNext("set_selection")); // whoever reads the clipboard takes the keyboard from its window
        QVERIFY(Desk::eventually([&] { return pasted(u"text/plain;charset=utf-8"_s) == text; }));
        QCOMPARE(pasted(u"x-kde-passwordManagerHint"_s), QByteArray("secret"));
    }

private:
    void enter(const Compositor &compositor)
    {
        qputenv("WAYLAND_DISPLAY", compositor.display());
        if (compositor.x11Display().isEmpty())
            qunsetenv("DISPLAY");
        else
            qputenv("DISPLAY", compositor.x11Display());
    }

    QByteArray m_firstDisplay;
};

QTEST_GUILESS_MAIN(WaylandTest)
#include "WaylandTest.moc"
