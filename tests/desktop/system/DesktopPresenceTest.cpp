#include "machine/desktop/DesktopPresence.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QTest>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QString managerPath = u"/org/freedesktop/login1"_s;
const QString sessionPath = u"/org/freedesktop/login1/session/_31"_s;

} // namespace

class LoginSession : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Session")
    Q_PROPERTY(bool LockedHint MEMBER isLocked)
public:
    bool isLocked = true;
};

/// The manager of log-ins on a connection of its own.
class LoginManager : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")
public:
    LoginManager() { QCOMPARE(pipe2(m_ends, O_CLOEXEC | O_NONBLOCK), 0); }
    ~LoginManager() override { close(m_ends[0]); }

    /// Whether the lock that was given out is closed wherever it was.
    bool isReleased() const
    {
        char byte = 0;
        return read(m_ends[0], &byte, 1) == 0;
    }

    QStringList inhibited;

public Q_SLOTS:
    QDBusObjectPath GetSession(const QString &id) { return QDBusObjectPath(id == u"auto" ? sessionPath : u"/"_s); }
    QDBusUnixFileDescriptor Inhibit(const QString &what, const QString &, const QString &, const QString &mode)
    {
        inhibited = {what, mode};
        QDBusUnixFileDescriptor lock(m_ends[1]);
        close(m_ends[1]);
        return lock;
    }

private:
    int m_ends[2] = {-1, -1};
};

/// What the desktop's own programs say on the bus, which is the system's, too, as long as the test lasts.
class DesktopPresenceTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { qputenv("DBUS_SYSTEM_BUS_ADDRESS", qgetenv("DBUS_SESSION_BUS_ADDRESS")); }

    void sleepAndLockAreFollowed()
    {
        QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"desktop"_s);
        LoginManager manager;
        LoginSession session;
        QVERIFY(bus.registerObject(managerPath, &manager, QDBusConnection::ExportAllSlots));
        QVERIFY(bus.registerObject(sessionPath, &session, QDBusConnection::ExportAllProperties));
        QVERIFY(bus.registerService(u"org.freedesktop.login1"_s));
        const auto say = [&bus](const QString &path, const QString &interface, const QString &name,
                                const QVariantList &values) {
            QDBusMessage signal = QDBusMessage::createSignal(path, interface, name);
            signal.setArguments(values);
            QVERIFY(bus.send(signal));
        };
        const auto sayLocked = [&say](const QString &path, bool isLocked) {
            say(path, u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s,
                {u"org.freedesktop.login1.Session"_s, QVariantMap{{u"LockedHint"_s, isLocked}}, QStringList()});
        };
        const auto sayActive = [&say](const QString &path, const QString &interface, bool isActive) {
            say(path, interface, u"ActiveChanged"_s, {isActive});
        };

        DesktopPresence presence;
        QVERIFY(!presence.isAway() && !presence.delaySleep()); // nobody was asked yet
        int changes = 0;
        int wakings = 0;
        const auto listener = std::make_shared<const std::function<void()>>([&] { ++changes; });
        const auto waking = std::make_shared<const std::function<void()>>([&] { ++wakings; });
        presence.follow(listener);
        presence.followResume(waking);
        QTRY_VERIFY(presence.isAway()); // it was locked before we came
        sayLocked(sessionPath, false);
        QTRY_VERIFY(!presence.isAway());

        auto wakefulness = presence.delaySleep();
        QTRY_COMPARE(manager.inhibited, (QStringList{u"sleep"_s, u"delay"_s}));
        QVERIFY(!manager.isReleased());
        sayLocked(u"/org/freedesktop/login1/session/_32"_s, true); // another's
        say(managerPath, u"org.freedesktop.login1.Manager"_s, u"PrepareForSleep"_s, {true});
        QTRY_VERIFY(presence.isAway());
        wakefulness.reset();
        QTRY_VERIFY(manager.isReleased());
        QCOMPARE(wakings, 0);
        say(managerPath, u"org.freedesktop.login1.Manager"_s, u"PrepareForSleep"_s, {false});
        QTRY_COMPARE(wakings, 1);
        QVERIFY(!presence.isAway());
        QCOMPARE(changes, 4);

        const std::pair<QString, QString> savers[] = {{u"/org/gnome/ScreenSaver"_s, u"org.gnome.ScreenSaver"_s},
                                                      {u"/ScreenSaver"_s, u"org.freedesktop.ScreenSaver"_s}};
        for (const auto &[path, interface] : savers) {
            sayActive(path, interface, true);
            QTRY_VERIFY(presence.isAway());
            sayActive(path, interface, false);
            QTRY_VERIFY(!presence.isAway());
        }
        // A saver that dies locks nothing.
        sayActive(savers[0].first, savers[0].second, true);
        QTRY_VERIFY(presence.isAway());
        bus = QDBusConnection(u"none"_s);
        QDBusConnection::disconnectFromBus(u"desktop"_s);
        QTRY_VERIFY(!presence.isAway());
    }
};

QTEST_GUILESS_MAIN(DesktopPresenceTest)
#include "DesktopPresenceTest.moc"
