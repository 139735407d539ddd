#pragma once

#include "base/SoundPlayer.h"

#include <QString>

#include <memory>

class PulseConnection;

/// Plays the four sounds of the program through the audio server's default sink.
///
/// The sound "Pop" is the file Pop.wav of the folder, and so on; each is read when it is first played.
class PulseSoundPlayer final : public SoundPlayer
{
public:
    PulseSoundPlayer(PulseConnection &connection, QString folder);
    ~PulseSoundPlayer() override;

    void play(const QString &name) override;

private:
    class Samples;

    PulseConnection &m_connection;
    std::shared_ptr<Samples> m_samples; // lives, and dies, on the loop's thread
};
