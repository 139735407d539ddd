#include "machine/desktop/NotificationPanel.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QLoggingCategory>
#include <QVariantMap>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(log, "com.sayvane.app.overlay")

const QString name = u"org.freedesktop.Notifications"_s;
const QString icon = u"app.sayvane.Sayvane"_s;
// We take it back ourselves.
constexpr int neverExpires = 0;

QDBusMessage call(const QString &method, const QVariantList &arguments)
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(name, u"/org/freedesktop/Notifications"_s, name, method);
    message.setArguments(arguments);
    return message;
}

} // namespace

NotificationPanel::~NotificationPanel()
{
    close();
}

void NotificationPanel::announce(const QString &text)
{
    m_wanted = text;
    m_isDue = true;
    follow();
}

void NotificationPanel::hide()
{
    m_wanted.clear();
    m_isDue = true;
    follow();
}

// One call at a time: only its answer tells what the next one is to replace.
void NotificationPanel::follow()
{
    if (m_isAsking || !std::exchange(m_isDue, false))
        return;
    if (m_wanted.isEmpty())
        close();
    else
        notify();
}

void NotificationPanel::notify()
{
    const QVariantMap hints{{u"transient"_s, true}, {u"desktop-entry"_s, icon}};
    const QDBusMessage message =
        call(u"Notify"_s, {u"Sayvane"_s, m_id, icon, u"Sayvane"_s, m_wanted.toHtmlEscaped(), QStringList(),
                           hints, neverExpires});
    m_isAsking = true;
    auto *answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<uint> id = *answer;
        m_id = id.isValid() ? id.value() : 0;
        if (!id.isValid() && !std::exchange(m_isMissed, true))
            qCWarning(log) << "The desktop shows no notifications: the menu alone tells what happens.";
        m_isAsking = false;
        follow();
    });
}

void NotificationPanel::close()
{
    if (m_id != 0)
        QDBusConnection::sessionBus().send(call(u"CloseNotification"_s, {m_id}));
    m_id = 0;
}
