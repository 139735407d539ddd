#pragma once

#include <cstdint>
#include <span>
#include <vector>

/// Long recordings are cut into pieces that can be decoded beside each other.
namespace Pieces {

using Samples = std::span<const std::int16_t>;

/// Cuts at the quietest moments, so that every piece but the last lasts 8 to 16 seconds. The pieces
/// together are the whole recording.
std::vector<Samples> of(Samples recording);

/// Whether there is nothing in it that could be speech.
bool isSilent(Samples piece);

} // namespace Pieces
