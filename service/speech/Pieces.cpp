#include "service/speech/Pieces.h"

#include "service/speech/Recording.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr size_t step = Recording::sampleRate / 50; // 20 ms
constexpr size_t pause = 15;                        // steps; a pause between phrases lasts 300 ms
constexpr size_t shortest = size_t{8} * Recording::sampleRate;
constexpr size_t longest = size_t{16} * Recording::sampleRate;
constexpr int silence = 100; // of 32767; about -50 dBFS at the peak

std::int64_t loudness(Pieces::Samples samples)
{
    std::int64_t sum = 0;
    for (const std::int16_t sample : samples)
        sum += std::abs(int{sample});
    return sum;
}

/// The middle of the quietest pause in the part of the recording where the next cut is due.
size_t quietestMoment(Pieces::Samples recording)
{
    std::vector<std::int64_t> steps;
    for (size_t at = shortest; at + step <= longest; at += step)
        steps.push_back(loudness(recording.subspan(at, step)));
    std::int64_t sum = 0;
    std::int64_t quietest = INT64_MAX;
    size_t best = 0;
    for (size_t i = 0; i < steps.size(); ++i) {
        sum += steps[i] - (i >= pause ? steps[i - pause] : 0);
        if (i + 1 >= pause && sum < quietest) {
            quietest = sum;
            best = i + 1 - pause;
        }
    }
    return shortest + (best + pause / 2) * step;
}

} // namespace

std::vector<Pieces::Samples> Pieces::of(Samples recording)
{
    std::vector<Samples> pieces;
    while (recording.size() > longest) {
        const size_t cut = quietestMoment(recording);
        pieces.push_back(recording.first(cut));
        recording = recording.subspan(cut);
    }
    pieces.push_back(recording);
    return pieces;
}

bool Pieces::isSilent(Samples piece)
{
    return std::ranges::none_of(piece, [](std::int16_t sample) { return std::abs(int{sample}) > silence; });
}
