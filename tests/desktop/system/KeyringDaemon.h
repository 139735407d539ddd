#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QProcess>

#include <csignal>

using namespace Qt::StringLiterals;

/// A keyring of the test's own on the session bus, gone with this object.
class KeyringDaemon
{
public:
    enum class Start { unlocked, untouched };

    /// Serves the keyrings below `dataHome`; unlocked, the first one is made when there is none.
    KeyringDaemon(const QString &dataHome, Start start)
    {
        QStringList arguments{u"--foreground"_s, u"--components=secrets"_s};
        if (start == Start::unlocked)
            arguments += u"--unlock"_s;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"XDG_DATA_HOME"_s, dataHome);
        m_process.setProcessEnvironment(environment);
        m_process.setStandardOutputFile(QProcess::nullDevice());
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.start(u"gnome-keyring-daemon"_s, arguments);
        m_process.waitForStarted();
        m_process.write("private");
        m_process.closeWriteChannel();
    }

    ~KeyringDaemon()
    {
        signal(SIGCONT);
        m_process.terminate();
        if (!m_process.waitForFinished(5000)) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }

    void signal(int number) { ::kill(pid_t(m_process.processId()), number); }

    static bool isThere()
    {
        return QDBusConnection::sessionBus().interface()->isServiceRegistered(u"org.freedesktop.secrets"_s);
    }

    static QString defaultCollection()
    {
        const QDBusMessage reply = call(u"ReadAlias"_s, {u"default"_s});
        return reply.arguments().value(0).value<QDBusObjectPath>().path();
    }

    static void lock() { call(u"Lock"_s, {QVariant::fromValue(QList{QDBusObjectPath(defaultCollection())})}); }

    /// By the keyring's own back door for log-ins, which needs no prompt.
    static void unlock()
    {
        const QDBusMessage session = call(u"OpenSession"_s, {u"plain"_s, QVariant::fromValue(QDBusVariant(QString()))});
        QDBusArgument password;
        password.beginStructure();
        password << session.arguments().value(1).value<QDBusObjectPath>() << QByteArray() << QByteArray("private")
                 << u"text/plain"_s;
        password.endStructure();
        call(u"UnlockWithMasterPassword"_s,
             {QVariant::fromValue(QDBusObjectPath(defaultCollection())), QVariant::fromValue(password)},
             u"org.gnome.keyring.InternalUnsupportedGuiltRiddenInterface"_s);
    }

private:
    static QDBusMessage call(const QString &method, const QVariantList &arguments,
                             const QString &interface = u"org.freedesktop.Secret.Service"_s)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(u"org.freedesktop.secrets"_s,
                                                              u"/org/freedesktop/secrets"_s, interface, method);
        message.setArguments(arguments);
        return QDBusConnection::sessionBus().call(message);
    }

    QProcess m_process;
};
