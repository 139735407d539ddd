#pragma once

#include "base/KeyTap.h"

#include <QList>

/// A keyboard that a test presses.
class FakeKeyTaps final : public KeyTaps
{
public:
    std::unique_ptr<KeyTap> install(std::span<const KeyChord> chords, Handler handler) override;

    /// What the tap makes of the event; `pass` when none is installed.
    KeyVerdict send(const KeyEvent &event) { return m_handler ? m_handler(event) : KeyVerdict::pass; }
    /// Presses and releases, then lets posted steps run.
    KeyVerdict tap(qint64 keyCode, quint64 flags);

    bool isInstalled() const { return m_handler != nullptr; }

    bool allowsInstall = true;
    QList<KeyChord> watched;
    int installs = 0;
    int enables = 0;

private:
    class Tap;
    Handler m_handler;
};
