#pragma once

#include "platform/KeyTap.h"

#include <QList>

class X11KeyTaps;

/// One watch among those that `X11KeyTaps` serves.
class X11KeyTap final : public KeyTap
{
public:
    X11KeyTap(X11KeyTaps &taps, std::span<const KeyChord> chords, KeyTaps::Handler handler);
    ~X11KeyTap() override;
    Q_DISABLE_COPY_MOVE(X11KeyTap)

    bool watch(std::span<const KeyChord> chords) override;
    void enable() override;

    const QList<KeyChord> &chords() const { return m_chords; }
    KeyVerdict judge(const KeyEvent &event) const { return m_handler(event); }

private:
    X11KeyTaps &m_taps;
    QList<KeyChord> m_chords;
    KeyTaps::Handler m_handler;
};
