#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The answer of an OpenAI-compatible chat model.
struct ChatCompletion
{
    std::string text;  ///< without blanks at its ends and without what the model said to itself
    std::string model; ///< empty when the server does not tell
    bool refused = false;
    std::optional<std::int64_t> inputTokens;
    std::optional<std::int64_t> outputTokens;

    /// Reads the body of a 200 answer; nothing when it has another form.
    static std::optional<ChatCompletion> in(std::string_view body);
};
