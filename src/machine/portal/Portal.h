#pragma once

#include <QCoroTask>
#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QHash>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <chrono>
#include <memory>

/// The desktop's portal (org.freedesktop.portal.Desktop), which asks the person on our behalf and remembers
/// the answer as ours. We are on a bus connection of our own there, since the portal is told who we are by
/// the first words of a connection (org.freedesktop.host.portal.Registry), and Qt speaks early on its own.
class Portal final : public QObject
{
    Q_OBJECT
public:
    /// What a request came to. Desktops tell a refusal by different numbers; to fail is to have no answer.
    struct Answer
    {
        enum class Outcome { given, refused, failed };
        Outcome outcome = Outcome::failed;
        QVariantMap results;
    };

    /// Who we are: the name of our desktop file.
    explicit Portal(const QString &appId);
    ~Portal() override;
    Q_DISABLE_COPY_MOVE(Portal)

    /// Begins to look for the portal, and follows it from then on.
    void look();
    /// Whether it is known which interfaces there are.
    bool isKnown() const { return m_isKnown; }
    /// The version of an interface of the portal; 0 for one that is not there.
    uint version(const QString &interface) const { return m_versions.value(interface); }

    static const QString &service();
    static const QString &path();
    QDBusConnection bus() const { return m_bus; }
    /// A name for a session or a request that no other has.
    static QString newToken();

    /// Calls a method that answers by a request: the person may be asked. The options come last, with the
    /// request's token. What has not been answered within that time is withdrawn, and has failed.
    QCoro::Task<Answer> request(QString interface, QString method, QVariantList arguments,
                                QVariantMap options, std::chrono::milliseconds patience);
    /// Makes a session of an interface; empty where it could not be had.
    QCoro::Task<QString> createSession(QString interface);
    void closeSession(const QString &session);

Q_SIGNALS:
    /// It became known which interfaces there are.
    void found();
    /// The portal went away, and every session with it.
    void lost();

private:
    class Reply;

    QCoro::Task<> meet();
    void meetAgain();

    QString m_appId;
    QDBusConnection m_bus{QString()}; // until it is looked for
    std::unique_ptr<QDBusServiceWatcher> m_watcher;
    QHash<QString, uint> m_versions;
    bool m_isKnown = false;
    int m_meeting = 0; // the latest counts
};
