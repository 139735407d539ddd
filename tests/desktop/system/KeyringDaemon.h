#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QProcess>

#include <csignal>

/// A keyring of the test's own on the session bus, gone with this object.
class KeyringDaemon
{
public:
    enum class Start { unlocked, untouched };

    /// Serves the keyrings below `dataHome`; unlocked, the first one is made when there is none.
    KeyringDaemon(const QString &dataHome, Start start)
    {
        QStringList arguments{QStringLiteral("--foreground"), QStringLiteral("--components=secrets")};
        if (start == Start::unlocked)
            arguments += QStringLiteral("--unlock");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_DATA_HOME"), dataHome);
        m_process.setProcessEnvironment(environment);
        m_process.setStandardOutputFile(QProcess::nullDevice());
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.start(QStringLiteral("gnome-keyring-daemon"), arguments);
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
        return QDBusConnection::sessionBus().interface()->isServiceRegistered(
            QStringLiteral("org.freedesktop.secrets"));
    }

    static QString defaultCollection()
    {
        const QDBusMessage reply = call(QStringLiteral("ReadAlias"), {QStringLiteral("default")});
        return reply.arguments().value(0).value<QDBusObjectPath>().path();
    }

    static void lock()
    {
        call(QStringLiteral("Lock"), {QVariant::fromValue(QList{QDBusObjectPath(defaultCollection())})});
    }

    /// By the keyring's own back door for log-ins, which needs no prompt.
    static void unlock()
    {
        const QDBusMessage session =
            call(QStringLiteral("OpenSession"),
                 {QStringLiteral("plain"), QVariant::fromValue(QDBusVariant(QString()))});
        QDBusArgument password;
        password.beginStructure();
        password << session.arguments().value(1).value<QDBusObjectPath>() << QByteArray()
                 << QByteArray("private") << QStringLiteral("text/plain");
        password.endStructure();
        call(QStringLiteral("UnlockWithMasterPassword"),
             {QVariant::fromValue(QDBusObjectPath(defaultCollection())), QVariant::fromValue(password)},
             QStringLiteral("org.gnome.keyring.InternalUnsupportedGuiltRiddenInterface"));
    }

private:
    static QDBusMessage call(const QString &method, const QVariantList &arguments,
                             const QString &interface = QStringLiteral("org.freedesktop.Secret.Service"))
    {
        QDBusMessage message =
            QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.secrets"),
                                           QStringLiteral("/org/freedesktop/secrets"), interface, method);
        message.setArguments(arguments);
        return QDBusConnection::sessionBus().call(message);
    }

    QProcess m_process;
};
