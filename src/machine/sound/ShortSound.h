#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>

/// A sound short enough to be held in memory: 16-bit samples in the byte order of this machine.
struct ShortSound
{
    uint32_t sampleRate = 0;
    uint8_t channels = 0;
    QByteArray pcm;

    /// Reads a sound file of up to two channels and five seconds; nothing when it is none.
    static std::optional<ShortSound> load(const QString &path);
};
