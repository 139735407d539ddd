#pragma once

#include "base/Appearance.h"

#include <QDBusVariant>
#include <QObject>
#include <QString>
#include <QVariantMap>

/// The desktop's settings portal (org.freedesktop.portal.Settings): `color-scheme`, `accent-color`,
/// `contrast` and `reduced-motion` of org.freedesktop.appearance, and where the last is not known
/// `enable-animations` of org.gnome.desktop.interface.
///
/// A desktop without a portal has no wishes. Nothing is asked before `follow`, and nothing waits.
class PortalAppearance final : public QObject, public Appearance
{
    Q_OBJECT
public:
    AppearanceWishes wishes() const override { return m_wishes; }
    void follow(const Listener &listener) override;

private:
    Q_SLOT void settingChanged(const QString &group, const QString &key, const QDBusVariant &value);
    void ask();
    void take(const QString &group, const QString &key, const QVariant &value);

    AppearanceWishes m_wishes;
    Listeners m_listeners;
    bool m_subscribed = false;
};
