#include "desktop/overlay/OtherWindow.h"
#include "dictation/OverlayPanel.h"
#include "machine/x11/DesktopSettings.h"
#include "machine/x11/MainScreen.h"
#include "machine/x11/X11FloatingPanel.h"
#include "overlay/OverlayDisplay.h"
#include "support/VirtualClock.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QProcess>
#include <QScopeGuard>
#include <QScreen>
#include <QTest>
#include <QWindow>

#include <xcb/shape.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// The overlay's window on a real screen, between windows of other programs.
class OverlayWindowTest final : public QObject
{
    Q_OBJECT

    VirtualClock m_clock;
    X11Connection m_connection;
    X11FloatingPanels m_panels{m_connection};
    OverlayPanel m_overlay{m_clock};
    OverlayDisplay m_display{m_overlay, m_panels, m_clock};
    const QRect m_screen = QGuiApplication::primaryScreen()->geometry();

    static QWindow *window() { return QGuiApplication::topLevelWindows().value(0); }
    static QColor pixel(const QPoint &place)
    {
        return QGuiApplication::primaryScreen()->grabWindow(0, place.x(), place.y(), 1, 1).toImage().pixelColor(0, 0);
    }
    /// Inside the capsule, beside what it shows.
    static QPoint inside() { return window()->geometry().center() + QPoint(-60, 0); }
    QPoint corner() const { return {m_screen.center().x() - 89, m_screen.bottom() - 36}; }
    /// How many rectangles the window is made of.
    int pieces()
    {
        const auto asked = xcb_shape_get_rectangles(m_connection.xcb(), static_cast<xcb_window_t>(window()->winId()),
                                                    XCB_SHAPE_SK_BOUNDING);
        const auto reply = adopt(xcb_shape_get_rectangles_reply(m_connection.xcb(), asked, nullptr));
        return reply ? xcb_shape_get_rectangles_rectangles_length(reply.get()) : 0;
    }
    void showSpinner() { show(FlowState::processing, std::nullopt, OverlayTone::success); }
    /// The window is there when there is time.
    void show(FlowState state, const std::optional<QString> &message, OverlayTone tone)
    {
        m_overlay.show(state, message, tone);
        QCoreApplication::processEvents();
    }
    void hide()
    {
        m_overlay.hide(0s);
        QCoreApplication::processEvents();
    }

private Q_SLOTS:
    void cleanup() { hide(); }

    void itLeavesTheUserAlone()
    {
        OtherWindow work(m_screen.adjusted(40, 40, -40, -40));
        QTRY_VERIFY(work.hasFocus());
        showSpinner();
        const QColor dark(18, 18, 19);
        QTRY_COMPARE(pixel(inside()), dark);
        QVERIFY(work.hasFocus());
        const auto overlay = static_cast<xcb_window_t>(window()->winId());
        QVERIFY(!work.managedWindows().contains(overlay));
        const xcb_window_t clicked = work.windowAt(inside());
        QVERIFY(clicked != XCB_WINDOW_NONE);
        QVERIFY(clicked != overlay);

        // Neither a full-screen window nor another desktop hides it.
        OtherWindow film(m_screen, "_NET_WM_STATE_FULLSCREEN");
        QTRY_COMPARE(pixel({5, 5}), QColor(Qt::yellow));
        QTRY_VERIFY(film.hasFocus());
        QCOMPARE(pixel(inside()), dark);
        QProcess::execute(u"xdotool"_s, {u"set_desktop"_s, u"1"_s});
        QTRY_VERIFY(pixel({5, 5}) != QColor(Qt::yellow));
        QCOMPARE(pixel(inside()), dark);
        QProcess::execute(u"xdotool"_s, {u"set_desktop"_s, u"0"_s});
        hide();
        QTRY_COMPARE(pixel(inside()), QColor(Qt::yellow));
    }

    void itStandsAboveADock()
    {
        showSpinner();
        QCOMPARE(window()->geometry(), QRect(m_screen.center().x() - 89, m_screen.height() - 72, 180, 36));
        const OtherWindow dock = OtherWindow::dock(100);
        QTRY_COMPARE(window()->geometry().bottom(), m_screen.bottom() - 136); // moved while it is shown
    }

    /// Something begins to compose the screen, and stops again.
    void itIsCutToItsOutlineUnlessItCanBeTranslucent()
    {
        QTRY_COMPARE(QGuiApplication::primaryScreen()->availableGeometry(), m_screen);
        showSpinner();
        QTRY_VERIFY(pieces() > 10);
        const QColor ground = pixel(corner() - QPoint(20, 0));
        QCOMPARE(pixel(corner()), ground);
        X11Connection compositor;
        const xcb_atom_t selection = compositor.atoms()["_NET_WM_CM_S0"];
        xcb_set_selection_owner(compositor.xcb(), compositor.createWindow(0), selection, XCB_CURRENT_TIME);
        QTRY_COMPARE(pieces(), 1);
        QCOMPARE(window()->geometry(),
                 QRect(m_screen.center().x() - 89, m_screen.height() - 72, 180, 36).adjusted(-24, -24, 24, 24));
        xcb_set_selection_owner(compositor.xcb(), XCB_WINDOW_NONE, selection, XCB_CURRENT_TIME);
        QTRY_VERIFY(pieces() > 10);
        QCOMPARE(window()->width(), 180);
    }

    void screenReadersAreTold()
    {
        constexpr int patienceMs = 60000; // four processes take part, on a machine that may be busy
        QProcess bus;
        QProcess listener;
        const auto end = qScopeGuard([&] {
            for (QProcess *process : {&listener, &bus}) {
                process->terminate();
                process->waitForFinished();
            }
        });
        bus.start(u"/usr/libexec/at-spi-bus-launcher"_s, {u"--launch-immediately"_s});
        listener.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        QByteArray heard;
        const auto hears = [&](const QByteArray &line) {
            heard += listener.readAllStandardOutput();
            return heard.contains(line);
        };
        listener.start(u"/usr/bin/python3"_s, {QStringLiteral(LISTENER)});
        QTRY_VERIFY_WITH_TIMEOUT(hears("listening"), patienceMs);
        // This program may learn only now that somebody listens.
        const auto repeats = [&] {
            showSpinner();
            return QTest::qWaitFor([&] { return hears("Transcribing 0\n"); }, 200);
        };
        QTRY_VERIFY_WITH_TIMEOUT(repeats(), patienceMs);
        show(FlowState::idle, u"Nothing heard"_s, OverlayTone::failure);
        QTRY_VERIFY2_WITH_TIMEOUT(hears("Nothing heard 0\n"), heard, patienceMs);
    }

    void everyMonitorHasItsOwnWorkArea_data()
    {
        QTest::addColumn<QRect>("monitor");
        QTest::addColumn<QRect>("area");
        QTest::newRow("dock below") << QRect(0, 0, 1280, 800) << QRect(0, 24, 1280, 736);
        QTest::newRow("nothing on it") << QRect(1280, 0, 1920, 1080) << QRect(1280, 0, 1920, 1080);
        QTest::newRow("bar at the right") << QRect(3200, 0, 800, 600) << QRect(3200, 0, 760, 600);
    }

    void everyMonitorHasItsOwnWorkArea()
    {
        QFETCH(const QRect, monitor);
        // The lower end of the first monitor is 280 pixels above that of the root window.
        const QList<WorkArea::Strut> struts{{0, 0, 24, 0, 0, 0, 0, 0, 0, 1279, 0, 0},
                                            {0, 0, 0, 320, 0, 0, 0, 0, 0, 0, 0, 1279},
                                            {0, 40, 0, 0, 0, 0, 0, 599, 0, 0, 0, 0},
                                            {4000, 0, 0, 0, 0, 599, 0, 0, 0, 0, 0, 0},
                                            {1, 2, 3}};
        QTEST(WorkArea::of(monitor, {4000, 1080}, struts), "area");
    }

    void theDesktopsSettingsAreRead()
    {
        const QByteArray text("\1\0\7\0Net/Any\0\0\0\0\0\5\0\0\0plain\0\0\0", 28);
        const QByteArray colour("\2\0\1\0c\0\0\0\0\0\0\0\1\2\3\4\5\6\7\10", 20);
        const QByteArray wanted("\0\0\24\0Gtk/EnableAnimations\0\0\0\0\0\0\0\0", 32);
        const QByteArray whole = QByteArray("\0\0\0\0\1\0\0\0\3\0\0\0", 12) + text + colour + wanted;
        QCOMPARE(DesktopSettings(whole).integer("Gtk/EnableAnimations"), 0);
        QCOMPARE(DesktopSettings(whole).integer("Net/Any"), std::nullopt);
        const QByteArray big("\1\0\0\0\0\0\0\1\0\0\0\1\0\0\0\1x\0\0\0\0\0\0\0\0\0\1\2", 28);
        QCOMPARE(DesktopSettings(big).integer("x"), 258);
        for (qsizetype length = 0; length < whole.size(); ++length)
            QCOMPARE(DesktopSettings(whole.first(length)).integer("Gtk/EnableAnimations"), std::nullopt);
    }
};

QTEST_MAIN(OverlayWindowTest)
#include "OverlayWindowTest.moc"
