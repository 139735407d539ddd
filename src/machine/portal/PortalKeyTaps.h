#pragma once

#include "base/KeyTap.h"

#include <QCoroTask>
#include <QDBusObjectPath>
#include <QList>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <memory>
#include <optional>

class DefaultsStore;
class Portal;

/// Keys that the desktop's portal gives (org.freedesktop.portal.GlobalShortcuts). The desktop asks the person
/// once for each shortcut, shows it among its own, and takes the key for itself while our session is open.
///
/// A key is bound for as long as the session is, so Escape would be everybody's no more: what cancels here
/// is Escape with the shortcut's own modifiers.
class PortalKeyTaps final : public QObject, public KeyTaps
{
    Q_OBJECT
public:
    /// A refusal is kept in the store.
    PortalKeyTaps(Portal &portal, DefaultsStore &store);
    ~PortalKeyTaps() override;
    Q_DISABLE_COPY_MOVE(PortalKeyTaps)

    /// Whether the desktop has such a portal.
    bool isOffered() const;
    /// Whether it gave what was wanted last.
    bool isOpen() const;
    bool isRefused() const;

    /// The person may be asked now, unless they have refused.
    void ask();
    /// Forgets the answer; false where there was none.
    bool forget();

    /// None until the person has allowed it.
    std::unique_ptr<KeyTap> install(std::span<const KeyChord> chords, Handler handler) override;

Q_SIGNALS:
    /// The person has allowed it, or has refused.
    void answered();

private:
    class Tap;

    QCoro::Task<> bind();
    void end();
    Q_SLOT void activated(const QDBusObjectPath &session, const QString &shortcut, qulonglong time,
                          const QVariantMap &options);
    Q_SLOT void deactivated(const QDBusObjectPath &session, const QString &shortcut, qulonglong time,
                            const QVariantMap &options);
    Q_SLOT void closed();
    void tell(KeyEventType type, const QDBusObjectPath &session, const QString &shortcut);

    Portal &m_portal;
    DefaultsStore &m_store;
    bool m_mayAsk = false;
    bool m_isBinding = false;
    std::optional<KeyChord> m_wanted;
    std::optional<KeyChord> m_bound;
    QString m_session;
    QString m_held; // the shortcut that is pressed
    Tap *m_tap = nullptr;
};
