#pragma once

#include "platform/SoundPlayer.h"

#include <QString>

#include <map>
#include <memory>

class CachedSample;
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
    std::unique_ptr<CachedSample> load(const QString &name) const;

    PulseConnection &m_connection;
    QString m_folder;
    std::map<QString, std::unique_ptr<CachedSample>> m_samples; // null for a file that cannot be read
};
