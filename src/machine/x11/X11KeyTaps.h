#pragma once

#include "base/KeyTap.h"

#include <QByteArray>
#include <QObject>
#include <QThread>

#include <functional>
#include <memory>

class AccessibilityTrust;
class KeyWatch;

/// Keys of the whole X11 session, judged on a connection and a thread of their own: they are let go and taken
/// for what they are while the main thread is busy.
class X11KeyTaps final : public KeyTaps
{
public:
    /// An empty name is the display of the environment. The connection is being made on return.
    X11KeyTaps(const QByteArray &display, const AccessibilityTrust &trust);
    ~X11KeyTaps() override;
    Q_DISABLE_COPY_MOVE(X11KeyTaps)

    std::unique_ptr<KeyTap> install(std::span<const KeyChord> chords, Handler handler) override;
    /// The server does not tell which.
    QString holder() const override;

    /// Whether a tap watches this chord: pressed, it comes to us.
    bool isWatched(const KeyChord &chord) const;

private:
    class Tap;

    bool there(const std::function<bool(KeyWatch &)> &work) const;

    const AccessibilityTrust &m_trust;
    bool m_isHeld = false; // another program has the keys
    mutable QThread m_thread;
    std::unique_ptr<QObject> m_context; // what runs there is told to it
    std::unique_ptr<KeyWatch> m_watch;
};
