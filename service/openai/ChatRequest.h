#pragma once

#include "service/protocol/Refusal.h"

#include <expected>
#include <string>
#include <string_view>

/// A request to "/v1/chat/completions", as far as the editing of a text needs it.
struct ChatRequest
{
    std::string model;
    std::string text; ///< of the last message of the user
    bool stream = false;

    /// Sampling parameters are ignored; what would change the kind of answer (tools, several choices, a
    /// schema) is refused.
    static std::expected<ChatRequest, Refusal> fromJson(std::string_view body);
};
