#include "machine/desktop/PortalAppearance.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

using Settings = QMap<QString, QVariantMap>;

const QString service = u"org.freedesktop.portal.Desktop"_s;
const QString path = u"/org/freedesktop/portal/desktop"_s;
const QString interface = u"org.freedesktop.portal.Settings"_s;
const QString appearance = u"org.freedesktop.appearance"_s;
const QString gnome = u"org.gnome.desktop.interface"_s;

/// Three fractions of red, green and blue; anything outside 0 to 1 means that none is set.
std::optional<unsigned> accentIn(const QVariant &value)
{
    if (!value.canConvert<QDBusArgument>())
        return std::nullopt;
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != u"(ddd)")
        return std::nullopt;
    double parts[3];
    argument.beginStructure();
    argument >> parts[0] >> parts[1] >> parts[2];
    argument.endStructure();
    unsigned color = 0;
    for (const double part : parts) {
        if (!(part >= 0 && part <= 1))
            return std::nullopt;
        color = color << 8 | static_cast<unsigned>(std::lround(part * 255));
    }
    return color;
}

} // namespace

void PortalAppearance::follow(const Listener &listener)
{
    m_listeners.add(listener);
    if (m_subscribed)
        return;
    // Qt D-Bus looks the slot's parameters up by name, and does not connect while it knows none of it.
    qRegisterMetaType<QDBusVariant>();
    // From whoever sends it: the portal may start, or start again, at any time, and by the time that its
    // new owner is known the first change would be lost. Nothing but looks depends on it.
    m_subscribed = QDBusConnection::sessionBus().connect(
        {}, path, interface, u"SettingChanged"_s, this, SLOT(settingChanged(QString, QString, QDBusVariant)));
    ask();
}

void PortalAppearance::ask()
{
    QDBusMessage question = QDBusMessage::createMethodCall(service, path, interface, u"ReadAll"_s);
    question << QStringList{appearance, gnome};
    auto *watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusMessage reply = watcher->reply();
        if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != u"a{sa{sv}}")
            return;
        const auto settings = qdbus_cast<Settings>(reply.arguments().value(0));
        // Ours comes last, so that it counts where both speak of the same.
        for (const QString &group : {gnome, appearance}) {
            const QVariantMap values = settings.value(group);
            for (auto it = values.begin(); it != values.end(); ++it)
                take(group, it.key(), it.value());
        }
    });
}

void PortalAppearance::settingChanged(const QString &group, const QString &key, const QDBusVariant &value)
{
    take(group, key, value.variant());
}

void PortalAppearance::take(const QString &group, const QString &key, const QVariant &value)
{
    AppearanceWishes wishes = m_wishes;
    if (group == gnome) {
        if (key == u"enable-animations")
            wishes.reducedMotion = !value.toBool();
    } else if (group == appearance) {
        if (key == u"color-scheme")
            wishes.scheme = value.toUInt() == 1   ? ColorScheme::dark
                            : value.toUInt() == 2 ? ColorScheme::light
                                                  : ColorScheme::noPreference;
        else if (key == u"accent-color")
            wishes.accent = accentIn(value);
        else if (key == u"contrast")
            wishes.highContrast = value.toUInt() == 1;
        else if (key == u"reduced-motion")
            wishes.reducedMotion = value.toUInt() == 1;
    }
    if (wishes == m_wishes)
        return;
    m_wishes = wishes;
    m_listeners.tell();
}
