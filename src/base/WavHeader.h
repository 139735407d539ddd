#pragma once

#include <array>
#include <cstdint>

/// The 44 bytes before the samples of a WAV file with 16-bit mono samples: RIFF, a 16-byte "fmt " chunk,
/// "data", as described in "Multimedia Programming Interface and Data Specifications 1.0".
namespace WavHeader {

inline constexpr uint32_t size = 44;
inline constexpr uint32_t sampleSize = 2;

/// The header for so many bytes of samples.
std::array<char, size> of(uint32_t sampleRate, uint32_t dataSize);

} // namespace WavHeader
