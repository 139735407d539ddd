#include "cli/ControlClient.h"

#include "program/ControlInterface.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

using namespace Qt::StringLiterals;

ControlClient::ControlClient(const QString &profile) : m_busName(ControlInterface::busName(profile))
{
}

bool ControlClient::isServed() const
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    return bus.isConnected() && bus.interface()->isServiceRegistered(m_busName);
}

ControlClient::Answer ControlClient::call(const QString &method, const QVariantList &arguments,
                                          std::chrono::milliseconds limit) const
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return std::unexpected(
            Error{Error::Kind::notRunning,
                  u"There is no session bus to reach Sayvane on; is this a desktop session?"_s});
    QDBusMessage message =
        QDBusMessage::createMethodCall(m_busName, ControlInterface::path, ControlInterface::name, method);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    const QDBusMessage reply = bus.call(message, QDBus::Block, static_cast<int>(limit.count()));
    if (reply.type() == QDBusMessage::ReplyMessage)
        return reply.arguments();
    const QString error = reply.errorName();
    if (error == "org.freedesktop.DBus.Error.ServiceUnknown"_L1 ||
        error == "org.freedesktop.DBus.Error.NameHasNoOwner"_L1)
        return std::unexpected(Error{Error::Kind::notRunning, u"Sayvane is not running."_s});
    if (error == ControlInterface::failed)
        return std::unexpected(Error{Error::Kind::failed, reply.errorMessage()});
    return std::unexpected(
        Error{Error::Kind::failed, u"Sayvane did not answer: %1"_s.arg(reply.errorMessage())});
}
