#include "machine/gnome/MutterKeyPoster.h"

#include <QCoroDBusPendingCall>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QLoggingCategory>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(log, "com.sayvane.app.paste", QtInfoMsg)

const QString name = u"org.gnome.Mutter.RemoteDesktop"_s;
const QString path = u"/org/gnome/Mutter/RemoteDesktop"_s;
const QString sessionInterface = name + u".Session"_s;
constexpr int patience = 1000; // milliseconds

QDBusMessage call(const QString &object, const QString &interface, const QString &method,
                  const QVariantList &arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(name, object, interface, method);
    message.setArguments(arguments);
    return message;
}

QDBusMessage keyCall(const QString &session, uint key, bool isDown)
{
    return call(session, sessionInterface, u"NotifyKeyboardKeycode"_s, QVariantList{key, isDown});
}

} // namespace

MutterKeyPoster::MutterKeyPoster(LendToPrimary lendToPrimary)
    : RemoteKeyPoster(std::move(lendToPrimary)),
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

QCoro::Task<bool> MutterKeyPoster::open()
{
    const QPointer self(this);
    if (!m_isOffered)
        co_return false;
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

/// It answers in the order of what it is told.
QCoro::Task<> MutterKeyPoster::settled()
{
    const QDBusMessage last = keyCall(m_session, unknownKey, false);
    co_await QDBusConnection::sessionBus().asyncCall(last, patience);
}
