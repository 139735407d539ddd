#include "machine/sound/ShortSound.h"

#include <QFile>

#include <memory>

#include <sndfile.h>

std::optional<ShortSound> ShortSound::load(const QString &path)
{
    SF_INFO info = {};
    const std::unique_ptr<SNDFILE, int (*)(SNDFILE *)> file(
        sf_open(QFile::encodeName(path).constData(), SFM_READ, &info), sf_close);
    if (!file || info.channels > 2 || info.frames <= 0 || info.frames > sf_count_t(5) * info.samplerate)
        return std::nullopt;
    ShortSound sound;
    sound.sampleRate = static_cast<uint32_t>(info.samplerate);
    sound.channels = static_cast<uint8_t>(info.channels);
    sound.pcm.resize(info.frames * info.channels * qsizetype(sizeof(short)));
    const sf_count_t read =
        sf_readf_short(file.get(), reinterpret_cast<short *>(sound.pcm.data()), info.frames);
    if (read != info.frames)
        return std::nullopt;
    return sound;
}
