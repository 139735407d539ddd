#include "machine/gnome/GnomeConsent.h"

#include "base/DefaultsStore.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QVariantMap>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString key = u"gnomeAccess"_s;
const QString name = u"org.freedesktop.Notifications"_s;
const QString path = u"/org/freedesktop/Notifications"_s;
constexpr uchar untilAnswered = 2; // "critical": it does not go by itself

} // namespace

bool GnomeConsent::isGiven() const
{
    return m_store.value(key).toBool();
}

void GnomeConsent::ask()
{
    if (!m_store.value(key).isUndefined() || std::exchange(m_isAsking, true))
        return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.connect(name, path, name, u"ActionInvoked"_s, this, SLOT(answered(uint, QString)));
    bus.connect(name, path, name, u"NotificationClosed"_s, this, SLOT(closed(uint, uint)));
    const QVariantMap hints{{u"urgency"_s, QVariant::fromValue(untilAnswered)},
                            {u"desktop-entry"_s, u"app.sayvane.Sayvane"_s}};
    QDBusMessage question = QDBusMessage::createMethodCall(name, path, name, u"Notify"_s);
    question.setArguments(
        {u"Sayvane"_s, 0U, u"app.sayvane.Sayvane"_s, tr("Dictate with Ctrl + Super + Space?"),
         tr("Sayvane adds this shortcut to the keyboard settings, and pastes through GNOME's remote control, "
            "which the panel shows for a moment."),
         QStringList{u"allow"_s, tr("Allow"), u"refuse"_s, tr("Not Now")}, hints, 0});
    auto *answer = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<uint> id = *answer;
        m_question = id.isValid() ? id.value() : 0;
        m_isAsking = id.isValid();
    });
}

void GnomeConsent::askAgain()
{
    forget();
    m_isAsking = false;
    ask();
}

bool GnomeConsent::forget()
{
    const bool wasAnswered = !m_store.value(key).isUndefined();
    m_store.remove(key);
    return wasAnswered;
}

void GnomeConsent::answered(uint id, const QString &action)
{
    if (id == m_question && (action == u"allow"_s || action == u"refuse"_s))
        m_store.setValue(key, action == u"allow"_s);
}

/// Waved away is no answer: it is asked again at the next start.
void GnomeConsent::closed(uint id, uint)
{
    if (id == m_question)
        m_question = 0;
}
