#pragma once

#include "base/KeyTap.h"

#include <QList>
#include <QMutex>

/// The keys of a GNOME session. On X11 its window manager holds the left logo key itself and hands no other
/// program what is pressed with it alone, and Super+Space changes the keyboard's language: what is Fn
/// elsewhere is Ctrl and the logo key together here, whichever of them goes down first. A shortcut of its
/// settings that has the same keys comes first, silently: there is no tap then.
class GnomeKeyTaps final : public KeyTaps
{
public:
    /// Over the taps that know the keys by their own names.
    explicit GnomeKeyTaps(KeyTaps &taps) : m_taps(taps) {}

    /// Whether GNOME's shell, or one of its kin, runs this session.
    static bool isGnome();

    std::unique_ptr<KeyTap> install(std::span<const KeyChord> chords, Handler handler) override;
    QString holder() const override { return m_holder.isEmpty() ? m_taps.holder() : u'“' + m_holder + u'”'; }

private:
    class Tap;

    QList<KeyChord> take(std::span<const KeyChord> chords);
    quint64 meant(const KeyChord &pressed) const;

    KeyTaps &m_taps;
    QString m_holder;
    mutable QMutex m_mutex; // the keys are judged on a thread of their own
    QList<KeyChord> m_wanted;
};
