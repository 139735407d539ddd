#include "desktop/sound/HeardSound.h"

#include <QFile>
#include <QtEndian>

#include <cmath>

#include <sndfile.h>

HeardSound HeardSound::read(const QString &path)
{
    SF_INFO info = {};
    SNDFILE *file = sf_open(QFile::encodeName(path).constData(), SFM_READ, &info);
    if (!file)
        return {};
    HeardSound sound{info.samplerate, info.channels, info.format, QList<qint16>(info.frames * info.channels)};
    const sf_count_t frames = sf_readf_short(file, sound.samples.data(), info.frames);
    sf_close(file);
    QFile raw(path);
    const QByteArray header = raw.open(QFile::ReadOnly) ? raw.read(44) : QByteArray();
    const bool isMeant = header.size() == 44 &&
                         qFromLittleEndian<quint32>(header.constData() + 40) == frames * info.channels * 2 &&
                         qFromLittleEndian<quint32>(header.constData() + 4) + 8 <= raw.size();
    return isMeant ? sound : HeardSound();
}

double HeardSound::level() const
{
    double squares = 0;
    for (const qint16 sample : samples)
        squares += sample * sample / (32768.0 * 32768.0);
    return 10 * std::log10(squares / double(samples.size()));
}

double HeardSound::pitch() const
{
    qsizetype first = -1;
    qsizetype last = -1;
    int periods = -1;
    for (qsizetype n = 1; n < samples.size(); ++n) {
        if (samples[n - 1] >= 0 || samples[n] < 0)
            continue;
        first = first < 0 ? n : first;
        last = n;
        ++periods;
    }
    return periods > 0 ? periods * double(sampleRate) / double(last - first) : 0;
}
