#include "machine/portal/Portal.h"

#include "base/Completion.h"

#include <QCoroDBusPendingCall>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QLoggingCategory>
#include <QPointer>
#include <QTimer>
#include <QUuid>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

Q_LOGGING_CATEGORY(log, "com.sayvane.app.portal", QtInfoMsg)

const QString requestInterface = u"org.freedesktop.portal.Request"_s;
const QString sessionInterface = u"org.freedesktop.portal.Session"_s;
const QStringList wanted{u"org.freedesktop.portal.GlobalShortcuts"_s,
                         u"org.freedesktop.portal.RemoteDesktop"_s};
constexpr int patience = 3000; // milliseconds; the bus may have to start the portal first
constexpr auto sessionPatience = 3s;
constexpr auto recovery = 2s; // until a portal that died is started again

} // namespace

/// Waits for the answer to one request.
class Portal::Reply final : public QObject
{
    Q_OBJECT
public:
    Completion<Answer> answer;

    Q_SLOT void respond(uint response, const QVariantMap &results)
    {
        answer.complete({response == 0 ? Answer::Outcome::given : Answer::Outcome::refused, results});
    }
};

Portal::Portal(const QString &appId) : m_appId(appId)
{
}

Portal::~Portal()
{
    Q_EMIT lost();
    m_watcher.reset();
    if (m_bus.isConnected())
        QDBusConnection::disconnectFromBus(m_bus.name());
}

const QString &Portal::service()
{
    static const QString name = u"org.freedesktop.portal.Desktop"_s;
    return name;
}

const QString &Portal::path()
{
    static const QString name = u"/org/freedesktop/portal/desktop"_s;
    return name;
}

QString Portal::newToken()
{
    return u"sayvane_"_s + QUuid::createUuid().toString(QUuid::Id128);
}

void Portal::look()
{
    if (m_watcher)
        return;
    m_bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, newToken());
    m_watcher =
        std::make_unique<QDBusServiceWatcher>(service(), m_bus, QDBusServiceWatcher::WatchForOwnerChange);
    connect(m_watcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &before, const QString &now) {
                if (!before.isEmpty()) {
                    ++m_meeting;
                    m_isKnown = false;
                    m_versions.clear();
                    Q_EMIT lost();
                }
                if (now.isEmpty())
                    QTimer::singleShot(recovery, this, &Portal::meetAgain);
                else
                    meet();
            });
    meet();
}

void Portal::meetAgain()
{
    if (!m_isKnown)
        meet();
}

/// Tells who we are before anything else, and asks what there is; the bus starts a portal that does not run.
QCoro::Task<> Portal::meet()
{
    const QPointer self(this);
    const int meeting = ++m_meeting;
    QDBusMessage introduction = QDBusMessage::createMethodCall(
        service(), path(), u"org.freedesktop.host.portal.Registry"_s, u"Register"_s);
    introduction.setArguments({m_appId, QVariantMap()});
    co_await m_bus.asyncCall(introduction, patience); // a portal without it knows us by how we were started
    QHash<QString, uint> versions;
    for (const QString &interface : wanted) {
        if (!self || meeting != m_meeting)
            co_return;
        QDBusMessage question =
            QDBusMessage::createMethodCall(service(), path(), u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
        question.setArguments({interface, u"version"_s});
        const QDBusMessage answer = co_await m_bus.asyncCall(question, patience);
        if (answer.type() == QDBusMessage::ReplyMessage)
            versions[interface] = answer.arguments().value(0).value<QDBusVariant>().variant().toUInt();
    }
    if (!self || meeting != m_meeting)
        co_return;
    m_versions = versions;
    m_isKnown = true;
    Q_EMIT found();
}

QCoro::Task<Portal::Answer> Portal::request(QString interface, QString method, QVariantList arguments,
                                            QVariantMap options, std::chrono::milliseconds patience)
{
    const QString token = newToken();
    options.insert(u"handle_token"_s, token);
    arguments.append(options);
    // The answer may come before the method returns.
    const QString request =
        u"%1/request/%2/%3"_s.arg(path(), m_bus.baseService().mid(1).replace(u'.', u'_'), token);
    const auto reply = std::make_shared<Reply>();
    QDBusConnection bus = m_bus;
    bus.connect(service(), request, requestInterface, u"Response"_s, reply.get(),
                SLOT(respond(uint, QVariantMap)));
    connect(this, &Portal::lost, reply.get(), [reply = reply.get()] { reply->answer.complete({}); });
    QTimer::singleShot(patience, reply.get(), [reply = reply.get(), bus, request] {
        bus.send(QDBusMessage::createMethodCall(service(), request, requestInterface, u"Close"_s));
        reply->answer.complete({});
    });
    QDBusMessage call = QDBusMessage::createMethodCall(service(), path(), interface, method);
    call.setArguments(arguments);
    const QDBusMessage called = co_await bus.asyncCall(call, int(patience.count()));
    if (called.type() != QDBusMessage::ReplyMessage) {
        qCWarning(log) << "The portal's" << method << "failed:" << called.errorMessage();
        reply->answer.complete({});
    }
    const Completion<Answer>::Awaiter answer{&reply->answer};
    co_return co_await answer;
}

QCoro::Task<QString> Portal::createSession(QString interface)
{
    QVariantMap options;
    options.insert(u"session_handle_token"_s, newToken());
    const Answer made =
        co_await request(interface, u"CreateSession"_s, QVariantList(), options, sessionPatience);
    co_return made.outcome == Answer::Outcome::given ? made.results.value(u"session_handle"_s).toString()
                                                     : QString();
}

void Portal::closeSession(const QString &session)
{
    if (!session.isEmpty())
        m_bus.send(QDBusMessage::createMethodCall(service(), session, sessionInterface, u"Close"_s));
}

#include "Portal.moc"
