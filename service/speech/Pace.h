#pragma once

#include <chrono>
#include <cstddef>
#include <span>

/// How fast the decoders have been of late, and what that means for the next recording.
class Pace
{
public:
    using Seconds = std::chrono::duration<double>;

    /// One decoder took so long for so much sound.
    void add(Seconds sound, Seconds taken);
    /// How long a recording would be in work, when `waiting` is the sound that each other recording still
    /// waits for. Pieces are decoded in turn, so another one delays it by its own length at most.
    Seconds expected(Seconds sound, std::span<const Seconds> waiting, size_t decoders) const;

private:
    double m_factor = 0.15; // processing time per second of sound; a first guess
};
