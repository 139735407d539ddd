#include "machine/desktop/SecretServiceStore.h"
#include "support/VirtualClock.h"

#include <QCoroTask>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QtTest>

#include <optional>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString root = u"/org/freedesktop/secrets"_s;
const QDBusObjectPath collection(root + u"/collection/keys"_s);
const QDBusObjectPath item(root + u"/collection/keys/1"_s);
const QDBusObjectPath session(root + u"/session/1"_s);
const QDBusObjectPath nothing(u"/"_s);

/// A keyring of one place that asks before every act. What it was asked for is done when the test lets it.
class AskingKeyring final : public QDBusVirtualObject
{
public:
    AskingKeyring() : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"fake"_s))
    {
        m_bus.registerVirtualObject(root, this, QDBusConnection::SubPath);
        m_bus.registerService(u"org.freedesktop.secrets"_s);
    }
    ~AskingKeyring() override { QDBusConnection::disconnectFromBus(u"fake"_s); }

    QString introspect(const QString &) const override { return {}; }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override
    {
        const auto reply = [&](const QVariantList &arguments) { bus.send(message.createReply(arguments)); };
        const auto ask = [&](std::function<void()> act) {
            m_act = std::move(act);
            asked += message.member();
            return QVariant::fromValue(QDBusObjectPath(root + u"/prompt/%1"_s.arg(asked.size())));
        };
        const QList<QDBusObjectPath> none, there{item};
        const QString member = message.member();
        if (member == u"ReadAlias") {
            reply({QVariant::fromValue(collection)});
        } else if (member == u"Get") {
            reply({QVariant::fromValue(QDBusVariant(locked))});
        } else if (member == u"SearchItems") {
            reply({QVariant::fromValue(stored && !locked ? there : none), QVariant::fromValue(none)});
        } else if (member == u"OpenSession" && message.arguments().value(0) == u"plain"_s) {
            reply({QVariant::fromValue(QDBusVariant(QString())), QVariant::fromValue(session)});
        } else if (member == u"GetSecret") {
            QDBusArgument secret;
            secret.beginStructure();
            secret << session << QByteArray() << QByteArray("gsk_1") << u"text/plain"_s;
            secret.endStructure();
            reply({QVariant::fromValue(secret)});
        } else if (member == u"Unlock") {
            reply({QVariant::fromValue(none), ask([this] { locked = false; })});
        } else if (member == u"CreateItem") {
            reply({QVariant::fromValue(nothing), ask([this] { stored = true; })});
        } else if (member == u"Delete") {
            reply({ask([this] { stored = false; })});
        } else if (member == u"Prompt") {
            shown = message.path();
            reply({});
        } else {
            bus.send(message.createErrorReply(QDBusError::NotSupported, u"Not here."_s));
        }
        return true;
    }

    /// The person answers the prompt that is shown.
    void answer(bool dismissed)
    {
        QTRY_VERIFY(!shown.isEmpty());
        if (!dismissed)
            m_act();
        tell(std::exchange(shown, {}), u"org.freedesktop.Secret.Prompt"_s, u"Completed"_s,
             {dismissed, QVariant::fromValue(QDBusVariant(QVariant::fromValue(item)))});
    }
    void tell(const QString &path, const QString &interface, const QString &name, const QVariantList &arguments)
    {
        QDBusMessage signal = QDBusMessage::createSignal(path, interface, name);
        signal.setArguments(arguments);
        m_bus.send(signal);
    }

    bool locked = false;
    bool stored = false;
    QStringList asked;
    QString shown;

private:
    QDBusConnection m_bus;
    std::function<void()> m_act;
};

/// What came of an operation, once it has come; whoever looks at it may be gone by then.
template <typename T>
using Outcome = std::shared_ptr<std::optional<T>>;

template <typename T>
QCoro::Task<> deliver(QCoro::Task<T> task, Outcome<T> outcome)
{
    const T value = co_await task;
    *outcome = value;
}

template <typename T>
Outcome<T> outcomeOf(QCoro::Task<T> task)
{
    const auto outcome = std::make_shared<std::optional<T>>();
    deliver(std::move(task), outcome);
    return outcome;
}

} // namespace

class KeyringPromptTest : public QObject
{
    Q_OBJECT

    using Asking = SecretStore::Asking;

    VirtualClock m_clock;
    std::optional<AskingKeyring> m_keyring;
    std::optional<SecretServiceStore> m_store;

    QCoro::Task<int32_t> add()
    {
        return m_store->add(u"s"_s, u"a"_s, "gsk_1", SecretStore::Accessibility::afterFirstUnlock);
    }
    QCoro::Task<int32_t> remove() { return m_store->remove(u"s"_s, u"a"_s); }
    int32_t found(Asking asking = Asking::silently)
    {
        return QCoro::waitFor(m_store->find(u"s"_s, u"a"_s, asking, {})).status;
    }

private Q_SLOTS:
    void init()
    {
        m_keyring.emplace();
        m_store.emplace(m_clock, QString());
    }
    void cleanup()
    {
        m_store.reset();
        m_keyring.reset();
    }

    void whatThePersonAllowsIsDone()
    {
        struct Row
        {
            bool removes;
            bool isLocked;
            QList<bool> dismissed; // answers, in order
            int32_t status;
        };
        for (const auto &[removes, isLocked, dismissed, status] :
             {Row{false, false, {false}, SecretStatus::success}, Row{true, false, {false}, SecretStatus::success},
              Row{false, false, {true}, SecretStatus::userCanceled},
              Row{true, false, {true}, SecretStatus::userCanceled},
              Row{false, true, {false, false}, SecretStatus::success},
              Row{true, true, {false, false}, SecretStatus::success},
              Row{true, true, {true}, SecretStatus::interactionNotAllowed}}) {
            cleanup();
            init();
            m_keyring->stored = removes;
            m_keyring->locked = isLocked;
            const auto outcome = outcomeOf(removes ? remove() : add());
            for (const bool each : dismissed) {
                QTRY_VERIFY(!m_keyring->shown.isEmpty());
                m_clock.advance(1h); // the person is at lunch
                QVERIFY(!*outcome);
                m_keyring->answer(each);
            }
            QTRY_COMPARE(*outcome, status);
            QCOMPARE(m_keyring->stored, removes != (status == SecretStatus::success));
            m_keyring->locked = false;
            QCOMPARE(found(), m_keyring->stored ? SecretStatus::success : SecretStatus::itemNotFound);
        }
    }

    void onePromptIsOpenAtATime()
    {
        m_keyring->locked = true;
        const auto saved = outcomeOf(add());
        QTRY_VERIFY(!m_keyring->shown.isEmpty());
        const auto looked = outcomeOf(m_store->find(u"s"_s, u"a"_s, Asking::allowed, {}));
        QCOMPARE(found(), SecretStatus::interactionNotAllowed); // it waits for no prompt
        QCOMPARE(m_keyring->asked, QStringList{u"Unlock"_s});
        m_clock.advance(61s);
        QTRY_VERIFY(*looked); // nor does a dictation for long
        QVERIFY(!*saved);
    }

    void aLookUpThatIsRefusedIsFollowedByAMinuteOfQuiet()
    {
        m_keyring->stored = m_keyring->locked = true;
        QCOMPARE(found(Asking::silently), SecretStatus::interactionNotAllowed);
        QVERIFY(m_keyring->asked.isEmpty());
        for (int round = 1; round < 3; ++round) {
            const auto looked = outcomeOf(m_store->find(u"s"_s, u"a"_s, Asking::allowed, {}));
            m_keyring->answer(true);
            QTRY_VERIFY(*looked);
            m_clock.advance(59s);
            QCOMPARE(found(Asking::allowed), SecretStatus::interactionNotAllowed);
            QCOMPARE(m_keyring->asked.size(), round);
            m_clock.advance(2s);
        }
    }

    void aServiceThatLeavesTakesItsPromptWithItAndComesBack()
    {
        int changes = 0;
        const auto listener = std::make_shared<const std::function<void()>>([&changes] { ++changes; });
        m_store->follow(listener);
        const auto outcome = outcomeOf(add());
        QTRY_VERIFY(!m_keyring->shown.isEmpty());
        m_keyring.reset();
        QTRY_COMPARE(*outcome, SecretStatus::notAvailable);
        changes = 0;
        m_keyring.emplace();
        QTRY_VERIFY(changes > 0);
        changes = 0;
        m_keyring->tell(root, u"org.freedesktop.Secret.Service"_s, u"CollectionChanged"_s,
                        {QVariant::fromValue(collection)});
        QTRY_COMPARE(changes, 1);
        const auto another = outcomeOf(add());
        QTRY_VERIFY(!m_keyring->shown.isEmpty());
        m_store.reset(); // the program ends
        QCOMPARE(*another, SecretStatus::notAvailable);
    }
};

QTEST_GUILESS_MAIN(KeyringPromptTest)
#include "KeyringPromptTest.moc"
