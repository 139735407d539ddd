#include "machine/portal/Portal.h"
#include "machine/portal/PortalKeyPoster.h"
#include "machine/portal/PortalKeyTaps.h"

#include "base/DefaultsStore.h"

#include <QCoroTask>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QJsonValue>
#include <QTest>

#include <vector>

using namespace Qt::StringLiterals;

namespace {

const QString prefix = u"org.freedesktop.portal."_s;
const QString path = u"/org/freedesktop/portal/desktop"_s;
const QString connectionName = u"stand-in"_s;

constexpr KeyChord shortcut{.keyCode = 49, .flags = KeyFlags::control | KeyFlags::fn};
constexpr KeyChord other{.keyCode = 49, .flags = KeyFlags::option};
constexpr KeyChord escape{.keyCode = 53, .flags = 0};

struct Store final : DefaultsStore
{
    QHash<QString, QJsonValue> values;
    QJsonValue value(const QString &key) const override { return values.value(key, QJsonValue::Undefined); }
    void setValue(const QString &key, const QJsonValue &value) override { values[key] = value; }
    void remove(const QString &key) override { values.remove(key); }
};

/// A portal that answers before its methods return, as it was told to.
class StandIn final : public QDBusVirtualObject
{
public:
    enum class Person { allows, refuses, doesNotAnswer } person = Person::allows;
    uint remoteDesktop = 2;
    QStringList calls; // the names of what was called
    QStringList triggers, tokens;
    QList<int> keys; // negative for a release
    QString session, bound;

    void appear()
    {
        m_bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName);
        QVERIFY(m_bus.registerVirtualObject(path, this, QDBusConnection::SubPath));
        QVERIFY(m_bus.registerService(u"org.freedesktop.portal.Desktop"_s));
    }
    void vanish()
    {
        m_bus = QDBusConnection(QString());
        QDBusConnection::disconnectFromBus(connectionName);
    }
    void press(const QString &id, bool isDown = true)
    {
        QDBusMessage signal =
            QDBusMessage::createSignal(path, prefix + u"GlobalShortcuts"_s, isDown ? u"Activated"_s : u"Deactivated"_s);
        signal.setArguments({QVariant::fromValue(QDBusObjectPath(session)), id, qulonglong(7), QVariantMap()});
        m_bus.send(signal);
    }

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &) override
    {
        const QString member = message.member();
        const QVariantList arguments = message.arguments();
        calls.append(member);
        if (member == u"Get"_s) {
            const QString asked = arguments.value(0).toString().mid(prefix.size());
            if (asked == u"GlobalShortcuts"_s || asked == u"RemoteDesktop"_s)
                m_bus.send(message.createReply(
                    QVariant::fromValue(QDBusVariant(asked == u"RemoteDesktop"_s ? remoteDesktop : 1U))));
            else
                m_bus.send(message.createErrorReply(QDBusError::InvalidArgs, u"no such interface"_s));
            return true;
        }
        if (member == u"NotifyKeyboardKeycode"_s)
            keys.append(arguments.value(2).toInt() * (arguments.value(3).toUInt() ? 1 : -1));
        QVariantMap options = qdbus_cast<QVariantMap>(arguments.value(arguments.size() - 1));
        if (options.contains(u"handle_token"_s))
            respond(message, options);
        else
            m_bus.send(message.createReply());
        return true;
    }

private:
    void respond(const QDBusMessage &message, const QVariantMap &options)
    {
        QVariantMap results;
        bool asksThePerson = false;
        if (message.member() == u"CreateSession"_s) {
            session = path + u"/session/"_s + options.value(u"session_handle_token"_s).toString();
            results.insert(u"session_handle"_s, session);
        } else if (message.member() == u"BindShortcuts"_s) {
            asksThePerson = true;
            readShortcuts(message.arguments().value(1).value<QDBusArgument>());
            results.insert(u"shortcuts"_s, message.arguments().value(1));
        } else if (message.member() == u"SelectDevices"_s) {
            tokens.append(options.value(u"restore_token"_s, u"none"_s).toString());
        } else if (message.member() == u"Start"_s) {
            asksThePerson = true;
            results.insert(u"devices"_s, 1U);
            results.insert(u"restore_token"_s, u"token %1"_s.arg(tokens.size()));
        }
        const QString request = u"%1/request/%2/%3"_s.arg(path, message.service().mid(1).replace(u'.', u'_'),
                                                          options.value(u"handle_token"_s).toString());
        if (!asksThePerson || person != Person::doesNotAnswer) {
            QDBusMessage response =
                QDBusMessage::createTargetedSignal(message.service(), request, prefix + u"Request"_s, u"Response"_s);
            const bool isGiven = !asksThePerson || person == Person::allows;
            response.setArguments({isGiven ? 0U : 2U, isGiven ? results : QVariantMap()});
            m_bus.send(response);
        }
        m_bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(request))));
    }

    void readShortcuts(const QDBusArgument &shortcuts)
    {
        bound.clear();
        shortcuts.beginArray();
        while (!shortcuts.atEnd()) {
            QString id;
            QVariantMap properties;
            shortcuts.beginStructure();
            shortcuts >> id >> properties;
            shortcuts.endStructure();
            triggers.append(properties.value(u"preferred_trigger"_s).toString());
            if (bound.isEmpty())
                bound = id;
        }
        shortcuts.endArray();
    }

    QDBusConnection m_bus{QString()};
};

} // namespace

class PortalKeysTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_standIn = std::make_unique<StandIn>();
        m_store = Store();
    }
    void cleanup() { m_standIn->vanish(); }

    void theShortcutIsGivenByThePerson()
    {
        Portal portal(u"app.sayvane.Sayvane"_s);
        PortalKeyTaps taps(portal, m_store);
        portal.look();
        QTRY_VERIFY(portal.isKnown() && !taps.isOffered());
        m_standIn->appear();
        QTRY_VERIFY(taps.isOffered());
        QCOMPARE(m_standIn->calls.first(), u"Register"_s);

        QVERIFY(!install(taps, shortcut)); // nobody was asked
        QVERIFY(!m_standIn->calls.contains(u"BindShortcuts"_s));
        taps.ask();
        QTRY_VERIFY(taps.isOpen());
        QCOMPARE(m_standIn->triggers, QStringList({u"CTRL+LOGO+space"_s, u"CTRL+LOGO+Escape"_s}));

        auto tap = install(taps, shortcut);
        QVERIFY(tap);
        const QString toggle = m_standIn->bound;
        const QString cancel = QString(toggle).replace(u"toggle"_s, u"cancel"_s).replace(u"-49"_s, u"-53"_s);
        m_standIn->press(cancel);                                  // nothing is being recorded
        for (const bool isDown : {true, true, false, true, false}) // held, and pressed again
            m_standIn->press(toggle, isDown);
        QTRY_COMPARE(m_events.size(), size_t(5));
        QCOMPARE(presses(), QList<qint64>({49, 49}));
        const KeyChord both[] = {shortcut, escape};
        tap->watch(both);
        m_standIn->press(cancel);
        QTRY_COMPARE(presses(), QList<qint64>({49, 49, 53}));
        QCOMPARE(m_events.back().flags, quint64(0));

        // A portal that dies takes it away, and gives it back unasked.
        m_standIn->vanish();
        QTRY_VERIFY(!taps.isOpen());
        m_standIn->appear();
        QTRY_VERIFY(taps.isOpen());

        // Other keys are another shortcut.
        tap.reset();
        QVERIFY(!install(taps, other));
        QVERIFY(!taps.isOpen());
        QTRY_VERIFY(taps.isOpen());
        QCOMPARE(m_standIn->triggers.mid(4), QStringList({u"ALT+space"_s, u"ALT+Escape"_s}));
        QVERIFY(m_standIn->bound != toggle);
    }

    void aRefusalIsAnAnswer()
    {
        m_standIn->appear();
        m_standIn->person = StandIn::Person::refuses;
        for (const int start : {1, 2}) {
            Portal portal(u"app.sayvane.Sayvane"_s);
            PortalKeyTaps taps(portal, m_store);
            PortalKeyPoster keys(portal, m_store, nothing);
            portal.look();
            QTRY_VERIFY(taps.isOffered());
            QVERIFY(!install(taps, shortcut));
            taps.ask();
            keys.ask();
            QTRY_VERIFY(taps.isRefused() && m_store.values.contains(u"portalTyping"_s));
            QVERIFY(!keys.isAllowed());
            QCOMPARE(m_standIn->calls.count(u"Start"_s), 1);
            QCOMPARE(m_standIn->calls.count(u"BindShortcuts"_s), 1);
            if (start == 1)
                continue;
            m_standIn->person = StandIn::Person::allows;
            QVERIFY(taps.forget() && keys.forget());
            taps.ask();
            keys.ask();
            QTRY_VERIFY(taps.isOpen() && keys.isAllowed());
            QVERIFY(taps.forget() && keys.forget() && !taps.forget() && !keys.forget());
        }
    }

    void itTypesWithATokenForEachTime()
    {
        m_standIn->appear();
        Portal portal(u"app.sayvane.Sayvane"_s);
        PortalKeyPoster keys(portal, m_store, nothing);
        portal.look();
        QTRY_VERIFY(keys.isOffered());
        QVERIFY(!QCoro::waitFor(keys.post({9, KeyFlags::command}, [] { return true; })));
        QVERIFY(!m_standIn->calls.contains(u"Start"_s)); // nobody is asked in the middle of a dictation
        keys.ask();
        QTRY_VERIFY(keys.isAllowed());
        keys.prepare();
        QVERIFY(QCoro::waitFor(keys.post({9, KeyFlags::command}, [] { return true; })));
        QCOMPARE(m_standIn->tokens, QStringList({u"none"_s, u"token 1"_s}));
        QCOMPARE(m_standIn->keys, QList<int>({240, -240, 42, 110, -110, -42, -240}));
        QVERIFY(!QCoro::waitFor(keys.post({9, KeyFlags::command}, [] { return false; })));
        QCOMPARE(m_standIn->tokens.last(), u"token 2"_s);
        QTRY_COMPARE(m_standIn->calls.count(u"Close"_s), 3); // each session

        // A token that the desktop turns down is no refusal: nobody was asked.
        m_standIn->person = StandIn::Person::refuses;
        QVERIFY(!QCoro::waitFor(keys.post({9, KeyFlags::command}, [] { return true; })));
        QVERIFY(!keys.isAllowed() && m_store.values.isEmpty());
        m_standIn->person = StandIn::Person::allows;
        keys.ask();
        QTRY_VERIFY(keys.isAllowed());
        QTRY_COMPARE(m_standIn->calls.count(u"Close"_s), 5);

        // One that is no longer good costs its time once.
        m_standIn->person = StandIn::Person::doesNotAnswer;
        QVERIFY(!QCoro::waitFor(keys.post({9, KeyFlags::command}, [] { return true; })));
        QVERIFY(!keys.isAllowed());
        QVERIFY(!QCoro::waitFor(keys.post({9, KeyFlags::command}, [] { return true; })));
        QCOMPARE(m_standIn->calls.count(u"Start"_s), 6);
        QTRY_COMPARE(m_standIn->calls.count(u"Close"_s), 7); // the question, and its session
        // One that forgets asks each time: it is not used.
        m_standIn->vanish();
        QTRY_VERIFY(!portal.isKnown());
        m_standIn->remoteDesktop = 1;
        m_standIn->appear();
        QTRY_VERIFY(portal.isKnown());
        QVERIFY(!keys.isOffered());
    }

private:
    static QCoro::Task<> nothing() { co_return; }

    std::unique_ptr<KeyTap> install(PortalKeyTaps &taps, const KeyChord &chord)
    {
        return taps.install(std::span(&chord, 1), [this](const KeyEvent &event) {
            m_events.push_back(event);
            return KeyVerdict::swallow;
        });
    }
    QList<qint64> presses() const
    {
        QList<qint64> all;
        for (const KeyEvent &event : m_events) {
            if (event.type == KeyEventType::keyDown && !event.isAutorepeat)
                all.append(event.keyCode);
        }
        return all;
    }

    std::unique_ptr<StandIn> m_standIn;
    Store m_store;
    std::vector<KeyEvent> m_events;
};

QTEST_GUILESS_MAIN(PortalKeysTest)
#include "PortalKeysTest.moc"
