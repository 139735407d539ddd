#include "machine/desktop/DesktopPresence.h"

#include <QDBusPendingCall>
#include <QDBusVariant>

#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto patience = 2s;

const QString connectionName = u"sayvane-presence"_s;
const QString logind = u"org.freedesktop.login1"_s;
const QString managerPath = u"/org/freedesktop/login1"_s;
const QString manager = u"org.freedesktop.login1.Manager"_s;
const QString session = u"org.freedesktop.login1.Session"_s;
const QString properties = u"org.freedesktop.DBus.Properties"_s;
const QString lockedHint = u"LockedHint"_s;

struct Saver
{
    QString path;
    QString interface;
};
const Saver savers[] = {{u"/org/gnome/ScreenSaver"_s, u"org.gnome.ScreenSaver"_s},
                        {u"/ScreenSaver"_s, u"org.freedesktop.ScreenSaver"_s}};

/// The lock lasts for as long as its descriptor is open, which the answer holds.
class SleepDelay final : public Presence::Wakefulness
{
public:
    explicit SleepDelay(const QDBusPendingCall &lock) : m_lock(lock) {}

private:
    QDBusPendingCall m_lock;
};

QVariant firstOf(const QDBusMessage &reply)
{
    return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0) : QVariant();
}

} // namespace

DesktopPresence::DesktopPresence()
{
    m_savers.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(&m_savers, &QDBusServiceWatcher::serviceUnregistered, this, [this](const QString &name) {
        m_savers.removeWatchedService(name);
        change([&] { m_activeSavers.remove(name); });
    });
}

DesktopPresence::~DesktopPresence()
{
    if (m_entry.joinable())
        m_entry.join();
    QDBusConnection::disconnectFromBus(connectionName);
}

void DesktopPresence::follow(const Listener &listener)
{
    m_listeners.add(listener);
    watch();
}

void DesktopPresence::followResume(const Listener &listener)
{
    m_resumeListeners.add(listener);
    watch();
}

void DesktopPresence::watch()
{
    if (m_entry.joinable())
        return;
    m_savers.setConnection(QDBusConnection::sessionBus());
    m_entry = std::thread([this] {
        listenToSavers();
        enterSystemBus();
    });
}

void DesktopPresence::listenToSavers()
{
    QDBusConnection desktop = QDBusConnection::sessionBus();
    // From whoever sends it: a saver may start at any time.
    for (const Saver &saver : savers)
        desktop.connect({}, saver.path, saver.interface, u"ActiveChanged"_s, this,
                        SLOT(saverChanged(bool, QDBusMessage)));
}

void DesktopPresence::enterSystemBus()
{
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SystemBus, connectionName);
    if (!bus.isConnected())
        return;
    const auto ask = [&bus](const QString &path, const QString &interface, const QString &method,
                            const QVariantList &arguments) {
        QDBusMessage question = QDBusMessage::createMethodCall(logind, path, interface, method);
        question.setArguments(arguments);
        return firstOf(bus.call(question, QDBus::Block, int(std::chrono::milliseconds(patience).count())));
    };
    bus.connect(logind, managerPath, manager, u"PrepareForSleep"_s, this, SLOT(sleepChanged(bool)));
    const auto path = ask(managerPath, manager, u"GetSession"_s, {u"auto"_s}).value<QDBusObjectPath>().path();
    bool isLocked = false;
    if (!path.isEmpty()) {
        bus.connect(logind, path, properties, u"PropertiesChanged"_s, this,
                    SLOT(sessionChanged(QString, QVariantMap)));
        isLocked =
            ask(path, properties, u"Get"_s, {session, lockedHint}).value<QDBusVariant>().variant().toBool();
    }
    QMetaObject::invokeMethod(
        this,
        [this, bus, isLocked] {
            m_system = bus;
            if (!m_lockTold) // news since then are newer
                change([&] { m_isLocked = isLocked; });
        },
        Qt::QueuedConnection);
}

std::unique_ptr<Presence::Wakefulness> DesktopPresence::delaySleep()
{
    if (!m_system)
        return nullptr;
    QDBusMessage wish = QDBusMessage::createMethodCall(logind, managerPath, manager, u"Inhibit"_s);
    wish.setArguments({u"sleep"_s, u"Sayvane"_s, u"A dictation is under way"_s, u"delay"_s});
    return std::make_unique<SleepDelay>(m_system->asyncCall(wish));
}

template <typename Change>
void DesktopPresence::change(Change change)
{
    const bool wasAway = isAway();
    change();
    if (isAway() != wasAway)
        m_listeners.tell();
}

void DesktopPresence::sleepChanged(bool sleeps)
{
    change([&] { m_sleeps = sleeps; });
    if (!sleeps)
        m_resumeListeners.tell();
}

void DesktopPresence::sessionChanged(const QString &interface, const QVariantMap &values)
{
    if (interface != session || !values.contains(lockedHint))
        return;
    m_lockTold = true;
    change([&] { m_isLocked = values.value(lockedHint).toBool(); });
}

void DesktopPresence::saverChanged(bool isActive, const QDBusMessage &message)
{
    const QString saver = message.service();
    if (isActive)
        m_savers.addWatchedService(saver);
    else
        m_savers.removeWatchedService(saver);
    change([&] {
        if (isActive)
            m_activeSavers.insert(saver);
        else
            m_activeSavers.remove(saver);
    });
}
