#pragma once

#include <QByteArrayView>

#include <cstddef>
#include <mutex>

/// How loud it was since the last reading: filled by the thread that hears, read by another.
class LevelMeter final
{
public:
    /// What digital silence reads, in dBFS.
    static constexpr double silence = -120;

    /// Takes in 16-bit little-endian samples of one channel.
    void add(QByteArrayView pcm);

    /// Reads off everything added since the last reading. When nothing was, the last reading stands.
    void read();

    /// The root mean square at the last reading in dBFS: a square wave at full scale reads 0, a sine -3.
    double power() const { return m_power; }

private:
    std::mutex m_mutex; // guards the two sums
    double m_squares = 0;
    size_t m_samples = 0;
    double m_power = silence;
};
