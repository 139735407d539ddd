#pragma once

#include <cstdint>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

/// Speech as the recogniser wants it: 16 kHz, one channel, 16 bits.
struct Recording
{
    static constexpr int sampleRate = 16000;

    std::vector<std::int16_t> samples;

    double seconds() const { return static_cast<double>(samples.size()) / sampleRate; }

    /// Reads a RIFF/WAVE file of that format; the error is a sentence for the user. A recorder that was
    /// killed leaves lengths of 0 or 0xFFFFFFFF: such data reaches to the end of the file.
    static std::expected<Recording, std::string> fromWav(std::string_view bytes);
    /// How long such a file sounds, without reading its samples.
    static std::expected<double, std::string> secondsOfWav(std::string_view bytes);
};
