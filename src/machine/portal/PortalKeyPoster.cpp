#include "machine/portal/PortalKeyPoster.h"

#include "base/DefaultsStore.h"
#include "machine/portal/Portal.h"

#include <QCoroDBusPendingCall>
#include <QDBusMessage>
#include <QLoggingCategory>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

Q_LOGGING_CATEGORY(log, "com.sayvane.app.paste", QtInfoMsg)

const QString interface = u"org.freedesktop.portal.RemoteDesktop"_s;
const QString sessionInterface = u"org.freedesktop.portal.Session"_s;
const QString storedKey = u"portalTyping"_s; // the token, or "no"
const QString refusal = u"no"_s;
constexpr uint keyboard = 1;
constexpr uint untilRevoked = 2;
constexpr uint remembers = 2; // the first version that does
constexpr auto patience = 2500ms;
constexpr auto timeToAnswer = 120s;

QDBusMessage keyCall(const QString &session, uint key, bool isDown)
{
    QDBusMessage message = QDBusMessage::createMethodCall(Portal::service(), Portal::path(), interface,
                                                          u"NotifyKeyboardKeycode"_s);
    message.setArguments(
        {QVariant::fromValue(QDBusObjectPath(session)), QVariantMap(), int(key), uint(isDown)});
    return message;
}

} // namespace

PortalKeyPoster::PortalKeyPoster(Portal &portal, DefaultsStore &store, LendToPrimary lendToPrimary)
    : RemoteKeyPoster(std::move(lendToPrimary)),
      m_portal(portal),
      m_store(store)
{
    connect(&portal, &Portal::lost, this, &PortalKeyPoster::closed);
    connect(&portal, &Portal::found, this, [this] { m_hasFailed = false; });
}

PortalKeyPoster::~PortalKeyPoster()
{
    close();
}

bool PortalKeyPoster::isOffered() const
{
    return m_portal.version(interface) >= remembers;
}

bool PortalKeyPoster::isAllowed() const
{
    const QString stored = m_store.value(storedKey).toString();
    return isOffered() && !m_hasFailed && (isOpen() || (!stored.isEmpty() && stored != refusal));
}

void PortalKeyPoster::ask()
{
    if (!isOffered() || m_isAsking || !m_store.value(storedKey).isUndefined())
        return;
    m_isAsking = true;
    m_hasFailed = false;
    const auto asking = [](PortalKeyPoster &poster) -> QCoro::Task<> {
        const QPointer self(&poster);
        co_await poster.open(QString(), timeToAnswer);
        if (!self)
            co_return;
        poster.m_isAsking = false;
        poster.close();
    };
    asking(*this);
}

bool PortalKeyPoster::forget()
{
    const bool wasAnswered = !m_store.value(storedKey).isUndefined();
    m_store.remove(storedKey);
    return wasAnswered;
}

/// Nobody is asked in the middle of a dictation: a token that is no longer good has failed in time.
QCoro::Task<bool> PortalKeyPoster::open()
{
    if (!isAllowed())
        co_return false;
    const QPointer self(this);
    const bool isOpened = co_await open(m_store.value(storedKey).toString(), patience);
    if (self && !isOpened)
        m_hasFailed = true;
    co_return isOpened;
}

QCoro::Task<bool> PortalKeyPoster::open(QString token, std::chrono::milliseconds patience)
{
    const QPointer self(this);
    const QString session = co_await m_portal.createSession(interface);
    if (!self || session.isEmpty())
        co_return false;
    const QVariant handle = QVariant::fromValue(QDBusObjectPath(session));
    QVariantMap options;
    options.insert(u"types"_s, keyboard);
    options.insert(u"persist_mode"_s, untilRevoked);
    if (!token.isEmpty())
        options.insert(u"restore_token"_s, token);
    QVariantList arguments;
    arguments << handle;
    Portal::Answer answer =
        co_await m_portal.request(interface, u"SelectDevices"_s, arguments, options, ::patience);
    if (!self)
        co_return false;
    if (answer.outcome == Portal::Answer::Outcome::given) {
        arguments << QString();
        answer = co_await m_portal.request(interface, u"Start"_s, arguments, QVariantMap(), patience);
        if (!self)
            co_return false;
    }
    const bool isGiven = answer.outcome == Portal::Answer::Outcome::given &&
                         (answer.results.value(u"devices"_s).toUInt() & keyboard);
    const QString next = answer.results.value(u"restore_token"_s).toString();
    if (isGiven && !next.isEmpty())
        m_store.setValue(storedKey, next);
    else if (answer.outcome == Portal::Answer::Outcome::failed || isGiven || !token.isEmpty())
        m_store.remove(storedKey); // the token is used up; nobody was asked
    else
        m_store.setValue(storedKey, refusal);
    if (!isGiven) {
        qCWarning(log, "The desktop's portal does not let us type.");
        m_portal.closeSession(session);
        co_return false;
    }
    m_portal.bus().connect(Portal::service(), session, sessionInterface, u"Closed"_s, this, SLOT(closed()));
    m_session = session;
    co_return true;
}

void PortalKeyPoster::close()
{
    m_portal.closeSession(std::exchange(m_session, QString()));
}

void PortalKeyPoster::press(uint key, bool isDown)
{
    m_portal.bus().send(keyCall(m_session, key, isDown));
}

/// It answers in the order of what it is told.
QCoro::Task<> PortalKeyPoster::settled()
{
    const QDBusMessage last = keyCall(m_session, unknownKey, false);
    co_await m_portal.bus().asyncCall(last, int(::patience.count()));
}
