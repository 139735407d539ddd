#include "machine/desktop/PortalAppearance.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QProcess>
#include <QTest>

#include <tuple>

using namespace Qt::StringLiterals;

namespace {

using Group = QMap<QString, QDBusVariant>;
using Settings = QMap<QString, Group>;

struct Color
{
    double red, green, blue;
};

QDBusArgument &operator<<(QDBusArgument &argument, const Color &color)
{
    argument.beginStructure();
    argument << color.red << color.green << color.blue;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Color &color)
{
    argument.beginStructure();
    argument >> color.red >> color.green >> color.blue;
    argument.endStructure();
    return argument;
}

} // namespace

Q_DECLARE_METATYPE(Color)
Q_DECLARE_METATYPE(Settings)

/// A settings portal on a connection of its own.
class Portal : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")
public:
    Settings settings;

public Q_SLOTS:
    Settings ReadAll(const QStringList &) { return settings; }
};

class PortalAppearanceTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void wishesAreReadAndFollowed()
    {
        qDBusRegisterMetaType<Color>();
        qDBusRegisterMetaType<Group>();
        qDBusRegisterMetaType<Settings>();
        const QString path = u"/org/freedesktop/portal/desktop"_s;
        const QString appearance = u"org.freedesktop.appearance"_s;
        const QString gnome = u"org.gnome.desktop.interface"_s;

        {
            PortalAppearance without; // nobody answers, nothing waits
            const auto listener = std::make_shared<const std::function<void()>>([] { QFAIL("There is no portal."); });
            without.follow(listener);
            QCOMPARE(without.wishes().scheme, ColorScheme::noPreference);
        }
        QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"portal"_s);
        Portal portal;
        portal.settings = {{appearance,
                            {{u"color-scheme"_s, QDBusVariant(1u)},
                             {u"accent-color"_s, QDBusVariant(QVariant::fromValue(Color{1.0, 0.5, 0.0}))},
                             {u"contrast"_s, QDBusVariant(u"not a number"_s)}}},
                           {gnome, {{u"enable-animations"_s, QDBusVariant(false)}}}};
        QVERIFY(bus.registerObject(path, &portal, QDBusConnection::ExportAllSlots));
        QVERIFY(bus.registerService(u"org.freedesktop.portal.Desktop"_s));

        PortalAppearance desktop;
        int changes = 0;
        const auto listener = std::make_shared<const std::function<void()>>([&] { ++changes; });
        desktop.follow(listener);
        QTRY_COMPARE(desktop.wishes().scheme, ColorScheme::dark);
        QCOMPARE(desktop.wishes().accent.value_or(0), 0xff8000u);
        QVERIFY(desktop.wishes().reducedMotion && !desktop.wishes().highContrast);
        changes = 0;
        for (const auto &[group, key, value] : {
                 std::tuple{u"'org.freedesktop.appearance'"_s, u"'color-scheme'"_s, u"<uint32 2>"_s},
                 {u"'org.freedesktop.appearance'"_s, u"'accent-color'"_s, u"<(-1.0, -1.0, -1.0)>"_s},
                 {u"'org.freedesktop.appearance'"_s, u"'reduced-motion'"_s, u"<uint32 0>"_s},
                 {u"'something.else'"_s, u"'color-scheme'"_s, u"<uint32 1>"_s},
                 {u"'org.freedesktop.appearance'"_s, u"'contrast'"_s, u"<uint32 1>"_s},
             })
            QCOMPARE(
                QProcess::execute(u"gdbus"_s, {u"emit"_s, u"--session"_s, u"--object-path"_s, path, u"--signal"_s,
                                               u"org.freedesktop.portal.Settings.SettingChanged"_s, group, key, value}),
                0);
        QTRY_VERIFY(desktop.wishes().highContrast);
        QCOMPARE(desktop.wishes().scheme, ColorScheme::light);
        QVERIFY(!desktop.wishes().accent && !desktop.wishes().reducedMotion);
        QCOMPARE(changes, 4);
        QDBusConnection::disconnectFromBus(u"portal"_s);
    }
};

QTEST_GUILESS_MAIN(PortalAppearanceTest)
#include "PortalAppearanceTest.moc"
