#include "service/speech/Pace.h"

#include <algorithm>

void Pace::add(Seconds sound, Seconds taken)
{
    constexpr double weight = 0.1; // of one piece; the last twenty or so count
    constexpr Seconds shortest{1}; // shorter ones tell more of overhead than of speed
    if (sound >= shortest)
        m_factor += weight * (taken / sound - m_factor);
}

Pace::Seconds Pace::expected(Seconds sound, std::span<const Seconds> waiting, size_t decoders) const
{
    Seconds work = sound;
    for (const Seconds other : waiting)
        work += std::min(other, sound);
    return work * m_factor / static_cast<double>(decoders);
}
