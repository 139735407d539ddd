#include "platform/linux/system/KeyringPrompt.h"

#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QLoggingCategory>
#include <QVariantMap>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(keyringLog, "com.sayvane.app.keyring")

const QString service = u"org.freedesktop.secrets"_s;
const QString servicePath = u"/org/freedesktop/secrets"_s;
const QString serviceInterface = u"org.freedesktop.Secret.Service"_s;
const QString promptInterface = u"org.freedesktop.Secret.Prompt"_s;

} // namespace

KeyringPrompt::KeyringPrompt(const Clock &clock, QDBusConnection bus)
    : m_clock(clock),
      m_bus(std::move(bus)),
      m_watcher(service, m_bus, QDBusServiceWatcher::WatchForUnregistration)
{
    connect(&m_watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
        if (m_pending)
            finish(false);
    });
}

void KeyringPrompt::unlock(const QStringList &objects)
{
    QList<QDBusObjectPath> paths;
    for (const QString &object : objects)
        paths += QDBusObjectPath(object);
    QDBusMessage request =
        QDBusMessage::createMethodCall(service, servicePath, serviceInterface, u"Unlock"_s);
    request << QVariant::fromValue(paths);
    ask(request, 1);
}

void KeyringPrompt::createDefaultCollection()
{
    QDBusMessage request =
        QDBusMessage::createMethodCall(service, servicePath, serviceInterface, u"CreateCollection"_s);
    request << QVariantMap{{u"org.freedesktop.Secret.Collection.Label"_s, u"Default keyring"_s}}
            << u"default"_s;
    ask(request, 1);
}

bool KeyringPrompt::mayAsk() const
{
    return !m_pending && m_clock.monotonic() >= m_quietUntil;
}

void KeyringPrompt::ask(const QDBusMessage &request, int promptIndex)
{
    if (!mayAsk())
        return;
    m_pending = true;
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(request), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, promptIndex] {
        watcher->deleteLater();
        if (!m_pending)
            return; // the service left meanwhile
        const QDBusMessage reply = watcher->reply();
        const QString prompt = reply.arguments().value(promptIndex).value<QDBusObjectPath>().path();
        if (reply.type() == QDBusMessage::ErrorMessage) {
            qCWarning(keyringLog).noquote() << "The keyring cannot be asked for access:" << reply.errorName();
            finish(false);
        } else if (prompt.isEmpty() || prompt == u"/") {
            finish(true);
        } else {
            show(prompt);
        }
    });
}

void KeyringPrompt::show(const QString &prompt)
{
    m_prompt = prompt;
    m_bus.connect(service, prompt, promptInterface, u"Completed"_s, this, SLOT(promptCompleted(bool)));
    QDBusMessage request = QDBusMessage::createMethodCall(service, prompt, promptInterface, u"Prompt"_s);
    request << QString(); // no window of ours to stand on
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(request), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        if (watcher->isError() && m_pending)
            finish(false);
    });
}

void KeyringPrompt::promptCompleted(bool dismissed)
{
    if (m_pending)
        finish(!dismissed);
}

void KeyringPrompt::finish(bool granted)
{
    using namespace std::chrono_literals;
    if (!m_prompt.isEmpty()) {
        m_bus.disconnect(service, m_prompt, promptInterface, u"Completed"_s, this,
                         SLOT(promptCompleted(bool)));
        m_prompt.clear();
    }
    m_pending = false;
    if (!granted)
        m_quietUntil = m_clock.monotonic() + 60s;
}
