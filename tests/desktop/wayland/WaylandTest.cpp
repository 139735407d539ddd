#include "desktop/program/Desk.h"
#include "desktop/program/PanelStandIn.h"
#include "desktop/wayland/Compositor.h"
#include "desktop/wayland/NotificationStandIn.h"
#include "platform/linux/wayland/WaylandConnection.h"
#include "platform/linux/wayland/WaylandPasteboard.h"

#include <QCoroTask>
#include <QFile>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString clip = u"sense_and_sensibility_01_austen_64kb-0880"_s;
const QString program = QStringLiteral(PREFIX "/bin/sayvane");
const QStringList profile{u"--profile"_s, u"run"_s};

// The clipboard may be this very process's, which has to serve it meanwhile.
QByteArray pasted(Desk &desk, const QString &type)
{
    QProcess *reader = desk.open(u"wl-paste"_s, {u"--no-newline"_s, u"--type"_s, type});
    Desk::eventually([&] { return reader->state() == QProcess::NotRunning; });
    return reader->readAll();
}

} // namespace

/// The program on a Wayland desktop, where it may neither watch keys nor send them.
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

    void aDictationReachesTheClipboard_data();
    void aDictationReachesTheClipboard();
    void theClipboardIsShared();
    void aClipboardOutOfReachIsNotClaimed();

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

void WaylandTest::aDictationReachesTheClipboard_data()
{
    QTest::addColumn<bool>("hasX11");
    QTest::newRow("alone") << false;
    QTest::newRow("with a guest X11 server") << true;
}

void WaylandTest::aDictationReachesTheClipboard()
{
    QFETCH(bool, hasX11);
    const Compositor compositor(hasX11);
    if (!compositor.objection().isEmpty())
        QSKIP(compositor.objection());
    enter(compositor);
    PanelStandIn panel;
    NotificationStandIn notifications;
    Desk desk;
    desk.startSayvane({}, {});
    QVERIFY2(Desk::eventually([&] { return !panel.item().isEmpty(); }), desk.log());
    QVERIFY2(panel.menu().contains(u"(⚠️ Hotkey inactive: grant Accessibility)"_s), qPrintable(panel.menu()));

    QCOMPARE(desk.run(program, profile + QStringList{u"toggle"_s}), QByteArray());
    QVERIFY(desk.logsNext("flow: recording"));
    QTRY_COMPARE(notifications.texts, QStringList{u"Listening"_s});
    desk.say(clip);
    panel.click(u"Stop & Transcribe"_s);
    QVERIFY(desk.logsNext("flow: idle"));

    const QByteArray text = desk.history().first().toObject().value("text"_L1).toString().toUtf8();
    QVERIFY(!text.isEmpty());
    QCOMPARE(pasted(desk, u"text/plain;charset=utf-8"_s), text);
    QCOMPARE(pasted(desk, u"x-kde-passwordManagerHint"_s), QByteArray("secret"));
    const QString notice = u"Copied to clipboard. Grant Accessibility to paste automatically."_s;
    QTRY_COMPARE(notifications.texts.last(), notice);
    QVERIFY2(panel.menu().contains(u"(⚠️ "_s + notice + u')'), qPrintable(panel.menu()));
    QTRY_VERIFY(!notifications.isShowing);
    QVERIFY(!desk.log().contains(text));
}

void WaylandTest::theClipboardIsShared()
{
    const Compositor compositor(false);
    if (!compositor.objection().isEmpty())
        QSKIP(compositor.objection());
    enter(compositor);
    Desk desk;
    WaylandConnection connection;
    WaylandPasteboard pasteboard(connection);
    QVERIFY(pasteboard.isUsable());

    const QByteArray large(1'000'000, 'x'); // more than a pipe holds
    qint64 count = pasteboard.changeCount();
    desk.run(u"wl-copy"_s, {u"--type"_s, u"text/html"_s}, large);
    QTRY_VERIFY(pasteboard.changeCount() > count);
    const QList<PasteboardItem> theirs = QCoro::waitFor(pasteboard.items());
    QCOMPARE(theirs.size(), 1);
    QVERIFY(theirs.first().contains({u"text/html"_s, large}));

    pasteboard.setString(u"ours"_s);
    count = pasteboard.changeCount();
    QCOMPARE(pasted(desk, u"text/plain"_s), QByteArray("ours"));
    QCOMPARE(pasteboard.changeCount(), count);
    pasteboard.setItems(theirs);
    QCOMPARE(pasted(desk, u"text/html"_s), large);
    count = pasteboard.changeCount();
    desk.run(u"wl-copy"_s, {u"--clear"_s});
    QTRY_VERIFY(pasteboard.changeCount() > count);
    QVERIFY(QCoro::waitFor(pasteboard.items()).isEmpty());
}

// weston gives the clipboard only to the program that has the keyboard. It shows itself in a window here.
void WaylandTest::aClipboardOutOfReachIsNotClaimed()
{
    Desk desk;
    const QByteArray socket = qgetenv("XDG_RUNTIME_DIR") + "/weston";
    desk.open(u"weston"_s, {u"--backend=x11-backend.so"_s, u"--use-pixman"_s, u"--no-config"_s, u"--idle-time=0"_s,
                            u"--socket=weston"_s, u"--width=1024"_s, u"--height=700"_s});
    QVERIFY(Desk::eventually([&] { return QFile::exists(QString::fromUtf8(socket)); }));
    qputenv("WAYLAND_DISPLAY", socket);
    qunsetenv("DISPLAY");
    PanelStandIn panel;
    desk.startSayvane({}, {});
    QVERIFY2(Desk::eventually([&] { return !panel.item().isEmpty(); }), desk.log());
    panel.click(u"Start Dictation"_s);
    QVERIFY(desk.logsNext("flow: recording"));
    desk.say(clip);
    panel.click(u"Stop & Transcribe"_s);
    QVERIFY(desk.logsNext("flow: idle"));
    const QByteArray text = desk.history().first().toObject().value("text"_L1).toString().toUtf8();
    const QString notice =
        u"(⚠️ Not copied: this desktop's clipboard is out of reach. Open Sayvane to copy the text.)"_s;
    QVERIFY2(panel.menu().contains(notice), qPrintable(panel.menu()));
    QCOMPARE(pasted(desk, u"text/plain"_s), QByteArray("No selection\n"));

    panel.click(u"Copy Last Transcript"_s);
    QVERIFY(Desk::eventually([&] { return pasted(desk, u"text/plain;charset=utf-8"_s) == text; }));
    QCOMPARE(pasted(desk, u"x-kde-passwordManagerHint"_s), QByteArray("secret"));
}

QTEST_GUILESS_MAIN(WaylandTest)
#include "WaylandTest.moc"
