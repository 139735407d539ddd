#pragma once

#include "service/protocol/Refusal.h"

#include <cstddef>
#include <expected>
#include <string>
#include <string_view>

/// What a client asks when it wants a dictated text edited.
struct CleanupRequest
{
    static constexpr size_t maximumBody = size_t{2} << 20; // bytes; far more than ten minutes of speech

    std::string text;
    std::string vocabulary;
    std::string language;

    /// Reads a JSON object with "text" and, optionally, "vocabulary" and "language", all strings. Other
    /// members are ignored.
    static std::expected<CleanupRequest, Refusal> fromJson(std::string_view body);
};
