#include "base/WavHeader.h"

#include <QtEndian>

#include <algorithm>

std::array<char, WavHeader::size> WavHeader::of(uint32_t sampleRate, uint32_t dataSize)
{
    std::array<char, size> header;
    char *at = header.data();
    const auto text = [&at](const char *fourCharacters) { at = std::copy_n(fourCharacters, 4, at); };
    const auto number = [&at]<typename Number>(Number value) {
        qToLittleEndian(value, at);
        at += sizeof value;
    };
    text("RIFF");
    number(size - 8 + dataSize);
    text("WAVE");
    text("fmt ");
    number(uint32_t(16));
    number(uint16_t(1)); // linear PCM
    number(uint16_t(1)); // channel
    number(sampleRate);
    number(sampleRate * sampleSize); // bytes a second
    number(uint16_t(sampleSize));
    number(uint16_t(sampleSize * 8));
    text("data");
    number(dataSize);
    return header;
}
