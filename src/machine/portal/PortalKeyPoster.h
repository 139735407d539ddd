#pragma once

#include "machine/desktop/RemoteKeyPoster.h"

#include <QDBusObjectPath>
#include <QString>
#include <QVariantMap>

#include <chrono>

class DefaultsStore;
class Portal;

/// Types through the desktop's portal (org.freedesktop.portal.RemoteDesktop), which asks the person once and
/// gives a token, good for one time, with which it opens again unasked.
class PortalKeyPoster final : public RemoteKeyPoster
{
    Q_OBJECT
public:
    /// The token, or the refusal, is kept in the store.
    PortalKeyPoster(Portal &portal, DefaultsStore &store, LendToPrimary lendToPrimary);
    ~PortalKeyPoster() override;
    Q_DISABLE_COPY_MOVE(PortalKeyPoster)

    /// Whether the desktop has such a portal, and one that remembers.
    bool isOffered() const;
    /// Whether the person has allowed it, and it has not failed since.
    bool isAllowed() const;

    /// Asks the person, unless there is an answer.
    void ask();
    /// Forgets the answer; false where there was none.
    bool forget();

private:
    bool isOpen() const override { return !m_session.isEmpty(); }
    QCoro::Task<bool> open() override;
    QCoro::Task<bool> open(QString token, std::chrono::milliseconds patience);
    void close() override;
    void press(uint key, bool isDown) override;
    QCoro::Task<> settled() override;
    Q_SLOT void closed() { m_session.clear(); }

    Portal &m_portal;
    DefaultsStore &m_store;
    bool m_isAsking = false;
    bool m_hasFailed = false; // nobody waits for it a second time
    QString m_session;        // while it is open
};
