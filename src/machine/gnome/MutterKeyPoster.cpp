#include "machine/gnome/MutterKeyPoster.h"

#include "machine/desktop/KeyPositions.h"

#include <QCoroDBusPendingCall>
#include <QCoroTimer>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QLoggingCategory>
#include <QPointer>

#include <chrono>
#include <utility>

#include <linux/input-event-codes.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

Q_LOGGING_CATEGORY(log, "com.sayvane.app.paste", QtInfoMsg)

const QString name = u"org.gnome.Mutter.RemoteDesktop"_s;
const QString path = u"/org/gnome/Mutter/RemoteDesktop"_s;
const QString sessionInterface = name + u".Session"_s;
constexpr int patience = 1000; // milliseconds
constexpr uint firstXKeycode = 8;
// A key without a meaning: the session's keyboard comes with its first key, and windows take a moment to
// notice.
constexpr uint unknownKey = KEY_UNKNOWN;

constexpr KeyChord commandV{.keyCode = 9, .flags = KeyFlags::command};

QDBusMessage call(const QString &object, const QString &interface, const QString &method,
                  const QVariantList &arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(name, object, interface, method);
    message.setArguments(arguments);
    return message;
}

/// In the order of their presses, as the kernel numbers them.
QList<uint> keysOf(const KeyChord &chord)
{
    if (chord == commandV)
        return {KEY_LEFTSHIFT, KEY_INSERT};
    QList<uint> keys;
    for (const auto &[flag, key] :
         {std::pair(KeyFlags::control | KeyFlags::command, uint(KEY_LEFTCTRL)),
          std::pair(KeyFlags::shift, uint(KEY_LEFTSHIFT)), std::pair(KeyFlags::option, uint(KEY_LEFTALT))}) {
        if (chord.flags & flag)
            keys.append(key);
    }
    keys.append(KeyPositions::xKeycode(chord.keyCode) - firstXKeycode);
    return keys;
}

QDBusMessage keyCall(const QString &session, uint key, bool isDown)
{
    return call(session, sessionInterface, u"NotifyKeyboardKeycode"_s, QVariantList{key, isDown});
}

} // namespace

MutterKeyPoster::MutterKeyPoster(LendToPrimary lendToPrimary)
    : m_lendToPrimary(std::move(lendToPrimary)),
      m_watcher(name, QDBusConnection::sessionBus(),
                QDBusServiceWatcher::WatchForRegistration | QDBusServiceWatcher::WatchForUnregistration)
{
    connect(&m_watcher, &QDBusServiceWatcher::serviceRegistered, this, [this] { m_isOffered = true; });
    connect(&m_watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
        m_isOffered = false;
        m_session.clear();
    });
    const QDBusConnection bus = QDBusConnection::sessionBus();
    m_isOffered = bus.isConnected() && bus.interface()->isServiceRegistered(name);
}

MutterKeyPoster::~MutterKeyPoster()
{
    close();
}

void MutterKeyPoster::prepare()
{
    const auto opening = [](MutterKeyPoster &self) -> QCoro::Task<> { co_await self.open(); };
    opening(*this);
}

QCoro::Task<bool> MutterKeyPoster::open()
{
    const QPointer self(this);
    if (!m_isOffered)
        co_return false;
    if (!m_session.isEmpty())
        co_return true;
    QDBusConnection bus = QDBusConnection::sessionBus();
    const QDBusMessage created = co_await bus.asyncCall(call(path, name, u"CreateSession"_s), patience);
    if (!self)
        co_return false;
    const auto session = created.arguments().value(0).value<QDBusObjectPath>().path();
    if (created.type() != QDBusMessage::ReplyMessage || session.isEmpty()) {
        qCWarning(log) << "GNOME's remote control does not open:" << created.errorMessage();
        co_return false;
    }
    const QDBusMessage started =
        co_await bus.asyncCall(call(session, sessionInterface, u"Start"_s), patience);
    if (!self || started.type() != QDBusMessage::ReplyMessage)
        co_return false;
    m_session = session;
    press(unknownKey, true);
    press(unknownKey, false);
    co_return true;
}

void MutterKeyPoster::close()
{
    if (const QString session = std::exchange(m_session, QString()); !session.isEmpty())
        QDBusConnection::sessionBus().send(call(session, sessionInterface, u"Stop"_s));
}

void MutterKeyPoster::press(uint key, bool isDown)
{
    QDBusConnection::sessionBus().send(keyCall(m_session, key, isDown));
}

QCoro::Task<bool> MutterKeyPoster::post(KeyChord chord, std::function<bool()> mayStill)
{
    const QPointer self(this);
    const bool isOpen = co_await open();
    if (!isOpen || !self)
        co_return false;
    if (chord == commandV) {
        co_await m_lendToPrimary();
        if (!self)
            co_return false;
    }
    const QList<uint> keys = keysOf(chord);
    if (!mayStill() || m_session.isEmpty()) {
        close();
        co_return false;
    }
    for (const uint key : keys)
        press(key, true);
    for (auto key = keys.crbegin(); key != keys.crend(); ++key)
        press(*key, false);
    // An answer to the last of them: all have been typed.
    const QDBusMessage last = keyCall(m_session, unknownKey, false);
    co_await QDBusConnection::sessionBus().asyncCall(last, patience);
    if (self)
        close();
    co_return true;
}
