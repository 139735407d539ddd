#pragma once

#include "base/KeyPoster.h"

#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QObject>

#include <functional>

/// Types in a GNOME session on Wayland through its remote control (org.gnome.Mutter.RemoteDesktop), opened
/// for one paste and closed after it; the panel shows a sign meanwhile.
///
/// What has the keyboard is known of few programs there: Command-V is Shift+Insert, which all of them
/// understand, with the text as the PRIMARY selection too.
class MutterKeyPoster final : public QObject, public KeyPoster
{
    Q_OBJECT
public:
    /// Offers what is on the clipboard as the PRIMARY selection too; done when it is there.
    using LendToPrimary = std::function<QCoro::Task<>()>;

    explicit MutterKeyPoster(LendToPrimary lendToPrimary);
    ~MutterKeyPoster() override;
    Q_DISABLE_COPY_MOVE(MutterKeyPoster)

    /// Whether the compositor has such a remote control.
    bool isOffered() const { return m_isOffered; }

    void prepare() override;
    QCoro::Task<bool> post(KeyChord chord, std::function<bool()> mayStill) override;

private:
    QCoro::Task<bool> open();
    void close();
    void press(uint key, bool isDown);

    LendToPrimary m_lendToPrimary;
    QDBusServiceWatcher m_watcher;
    bool m_isOffered = false;
    QString m_session; // while it is open
};
