#pragma once

#include <QString>

/// Short notification sounds by name: "Pop", "Tink", "Funk" and "Basso".
class SoundPlayer
{
public:
    virtual ~SoundPlayer() = default;

    /// Starts the sound and returns at once. An unknown name or a missing audio device is silent.
    virtual void play(const QString &name) = 0;
};
