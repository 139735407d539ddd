#include "platform/linux/system/KeyringPrompt.h"
#include "support/VirtualClock.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QtTest>

#include <optional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// A Secret Service that only counts what it is asked; its prompt is answered by the test.
class FakeSecretService final : public QDBusVirtualObject
{
public:
    FakeSecretService() : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"fake"_s))
    {
        m_bus.registerVirtualObject(u"/org/freedesktop/secrets"_s, this, QDBusConnection::SubPath);
        m_bus.registerService(u"org.freedesktop.secrets"_s);
    }

    ~FakeSecretService() override { QDBusConnection::disconnectFromBus(u"fake"_s); }

    QString introspect(const QString &) const override { return {}; }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        requests += message.member();
        if (message.member() == u"Prompt") {
            connection.send(message.createReply());
        } else {
            const QDBusObjectPath prompt(u"/org/freedesktop/secrets/prompt/1"_s);
            const QVariant first = message.member() == u"Unlock" ? QVariant::fromValue(QList<QDBusObjectPath>())
                                                                 : QVariant::fromValue(QDBusObjectPath(u"/"_s));
            connection.send(message.createReply({first, QVariant::fromValue(prompt)}));
        }
        return true;
    }

    void dismiss()
    {
        QDBusMessage signal = QDBusMessage::createSignal(u"/org/freedesktop/secrets/prompt/1"_s,
                                                         u"org.freedesktop.Secret.Prompt"_s, u"Completed"_s);
        signal << true << QVariant::fromValue(QDBusVariant(u""_s));
        m_bus.send(signal);
    }

    QStringList requests;

private:
    QDBusConnection m_bus;
};

} // namespace

class KeyringPromptTest : public QObject
{
    Q_OBJECT

    const QStringList m_item{u"/org/freedesktop/secrets/collection/login/1"_s};
    std::optional<FakeSecretService> m_service;
    VirtualClock m_clock;

    /// Lets everything that is on its way on the bus arrive, both ways.
    static void settle()
    {
        for (int i = 0; i < 5; ++i) {
            bool answered = false;
            auto *call =
                new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(QDBusMessage::createMethodCall(
                    u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, u"GetId"_s)));
            connect(call, &QDBusPendingCallWatcher::finished, call, [&answered] { answered = true; });
            QTRY_VERIFY(answered);
            delete call;
        }
    }

private Q_SLOTS:
    void init() { m_service.emplace(); }

    void onePromptIsOpenAtATime()
    {
        KeyringPrompt prompt(m_clock, QDBusConnection::sessionBus());
        prompt.unlock(m_item);
        prompt.unlock(m_item);
        QTRY_COMPARE(m_service->requests, (QStringList{u"Unlock"_s, u"Prompt"_s}));
        prompt.createDefaultCollection();
        m_clock.advance(1h);
        prompt.unlock(m_item);
        settle();
        QCOMPARE(m_service->requests.size(), 2);
    }

    void aDismissedPromptIsFollowedByAMinuteOfQuiet()
    {
        KeyringPrompt prompt(m_clock, QDBusConnection::sessionBus());
        prompt.unlock(m_item);
        QTRY_COMPARE(m_service->requests.size(), 2);
        m_service->dismiss();
        settle();
        m_clock.advance(59s);
        prompt.unlock(m_item);
        settle();
        QCOMPARE(m_service->requests.size(), 2);
        m_clock.advance(2s);
        prompt.createDefaultCollection();
        QTRY_COMPARE(m_service->requests, (QStringList{u"Unlock"_s, u"Prompt"_s, u"CreateCollection"_s, u"Prompt"_s}));
    }

    void aServiceThatLeavesTakesItsPromptWithIt()
    {
        KeyringPrompt prompt(m_clock, QDBusConnection::sessionBus());
        prompt.unlock(m_item);
        QTRY_COMPARE(m_service->requests.size(), 2);
        m_service.reset();
        settle();
        m_clock.advance(61s);
        m_service.emplace();
        settle();
        prompt.unlock(m_item);
        QTRY_COMPARE(m_service->requests, (QStringList{u"Unlock"_s, u"Prompt"_s}));
    }
};

QTEST_GUILESS_MAIN(KeyringPromptTest)
#include "KeyringPromptTest.moc"
