#pragma once

#include "service/protocol/Refusal.h"

#include <cstddef>
#include <expected>
#include <string>
#include <string_view>

/// What a client asks an assistant.
struct LabsRequest
{
    enum class Mode { answer, reply, rewrite };

    static constexpr size_t maximumPrompt = 8000;     // characters as a reader counts them
    static constexpr size_t maximumContext = 4000;    // characters
    static constexpr size_t maximumBody = 512 * 1024; // bytes; every character may be written as \u escapes

    std::string prompt;
    std::string provider; ///< one of the known assistants
    Mode mode = Mode::answer;
    std::string language; ///< ISO 639-1, perhaps with a region; empty when unknown
    std::string context;  ///< what to reply to or to rewrite; may be empty

    /// Reads a JSON object of texts: "prompt", "provider", "mode" and, optionally, "language" and
    /// "context". Other members are ignored.
    static std::expected<LabsRequest, Refusal> fromJson(std::string_view body);
};
