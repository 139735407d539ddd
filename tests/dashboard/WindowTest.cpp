#include "dashboard/window/Theme.h"
#include "desktop/screens/Stage.h"

#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

class WindowTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void theProgramIsRegularWhileAWindowIsOpen()
    {
        FakeMachine machine;
        int cancelled = 0;
        int menus = 0;
        Host host(machine.platform, u"https://service.test"_s);
        Windows windows(host, machine.platform, &Stage::makeEngine,
                        {.installMainMenu = [&] { ++menus; }, .cancelShortcutCapture = [&] { ++cancelled; }});
        QVERIFY(!windows.dashboard().window());
        windows.openDashboard();
        QWindow &window = *windows.dashboard().window();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(window.title(), u"Sayvane"_s);
        QCOMPARE(window.size(), QSize(960, 640));
        QCOMPARE(window.minimumSize(), QSize(760, 520));
        QCOMPARE(machine.activation.policy, ActivationPolicy::regular);
        QCOMPARE(menus, 1);
        QCOMPARE(machine.clock.pendingTimers(), size_t{1});

        // A panel does not keep the program regular, another ordinary window does.
        QWindow panel;
        panel.setFlags(Qt::Tool | Qt::FramelessWindowHint);
        panel.show();
        QWindow other;
        other.show();
        window.close();
        QCOMPARE(machine.activation.policy, ActivationPolicy::regular);
        QCOMPARE(cancelled, 1);
        QCOMPARE(machine.clock.pendingTimers(), size_t{0});
        other.close();
        QCOMPARE(machine.activation.policy, ActivationPolicy::accessory);
        QCOMPARE(cancelled, 1);

        // The same window again, and back from a screen that is gone.
        window.setPosition(50000, 50000);
        windows.openSettings();
        QCOMPARE(windows.dashboard().window(), &window);
        QCOMPARE(windows.navigation().section().rawValue(), u"settings"_s);
        QVERIFY(window.screen()->availableGeometry().intersects(window.geometry()));
        window.close();
        QCOMPARE(machine.activation.policy, ActivationPolicy::accessory);
    }

    /// Every sign and text can be read on both grounds, in every look and with any accent of the desktop.
    void colorsCanBeRead_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::addColumn<bool>("highContrast");
        QTest::addColumn<QColor>("accent");
        for (const bool dark : {false, true})
            for (const bool highContrast : {false, true})
                for (const QColor &accent : {QColor(), QColor(Qt::yellow), QColor(0x3584e4), QColor(Qt::black)})
                    QTest::addRow("%s%s %s", dark ? "dark" : "light", highContrast ? " high contrast" : "",
                                  qPrintable(accent.isValid() ? accent.name() : u"own"_s))
                        << dark << highContrast << accent;
    }
    void colorsCanBeRead()
    {
        QFETCH(bool, dark);
        QFETCH(bool, highContrast);
        QFETCH(QColor, accent);
        const auto colors =
            ThemeColors::of(dark, highContrast, accent.isValid() ? std::optional(accent) : std::nullopt);
        for (const QColor &ground : {colors.window, colors.surface}) {
            for (const QColor &ink :
                 {colors.text, colors.secondary, colors.accent, colors.success, colors.warning, colors.error})
                QVERIFY2(ThemeColors::contrast(ink, ground) >= 4.5, qPrintable(ink.name()));
            QVERIFY(ThemeColors::contrast(colors.tertiary, ground) >= 4.2);
        }
        QVERIFY(ThemeColors::contrast(colors.accent, colors.onAccent) >= 4.5);
        QCOMPARE(ThemeColors::contrast(Qt::white, Qt::black), 21.0);
    }

    void theThemeFollowsTheDesktop()
    {
        FakeAppearance appearance;
        const Theme theme(appearance);
        std::make_unique<Theme>(appearance).reset(); // another window's, closed again
        QSignalSpy changed(&theme, &Theme::changed);
        QVERIFY(!theme.isDark() && theme.motion() > 0);
        appearance.want({.scheme = ColorScheme::dark, .accent = 0xff8800, .reducedMotion = true});
        QVERIFY(theme.isDark() && theme.motion() == 0);
        QCOMPARE(theme.accent(), QColor(0xff8800));
        appearance.want(appearance.wanted);
        QCOMPARE(changed.count(), 1);
        appearance.want({.highContrast = true});
        QCOMPARE(theme.window(), QColor(Qt::white));
    }
};

QTEST_MAIN(WindowTest)
#include "WindowTest.moc"
