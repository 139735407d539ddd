#include "machine/sound/LevelMeter.h"

#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <utility>

void LevelMeter::add(QByteArrayView pcm)
{
    constexpr qsizetype width = sizeof(qint16);
    double squares = 0;
    for (qsizetype at = 0; at + width <= pcm.size(); at += width) {
        const double sample = qFromLittleEndian<qint16>(pcm.data() + at) / 32768.0;
        squares += sample * sample;
    }
    const std::lock_guard lock(m_mutex);
    m_squares += squares;
    m_samples += static_cast<size_t>(pcm.size() / width);
}

void LevelMeter::read()
{
    const std::lock_guard lock(m_mutex);
    if (m_samples == 0)
        return;
    const double mean = std::exchange(m_squares, 0) / static_cast<double>(std::exchange(m_samples, 0));
    m_power = mean > 0 ? std::max(silence, 10 * std::log10(mean)) : silence;
}
