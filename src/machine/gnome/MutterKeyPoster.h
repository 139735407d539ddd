#pragma once

#include "machine/desktop/RemoteKeyPoster.h"

#include <QDBusServiceWatcher>

/// Types in a GNOME session on Wayland through its remote control (org.gnome.Mutter.RemoteDesktop); the panel
/// shows a sign while it is open.
class MutterKeyPoster final : public RemoteKeyPoster
{
    Q_OBJECT
public:
    explicit MutterKeyPoster(LendToPrimary lendToPrimary);
    ~MutterKeyPoster() override;
    Q_DISABLE_COPY_MOVE(MutterKeyPoster)

    /// Whether the compositor has such a remote control.
    bool isOffered() const { return m_isOffered; }

private:
    bool isOpen() const override { return !m_session.isEmpty(); }
    QCoro::Task<bool> open() override;
    void close() override;
    void press(uint key, bool isDown) override;
    QCoro::Task<> settled() override;

    QDBusServiceWatcher m_watcher;
    bool m_isOffered = false;
    QString m_session; // while it is open
};
