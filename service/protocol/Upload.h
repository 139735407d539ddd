#pragma once

#include <cstddef>
#include <string>

/// A recording as a client sent it, and what the client says about it.
struct Upload
{
    static constexpr size_t maximumLanguage = 64; // bytes
    static constexpr size_t maximumPrompt = 32768;

    std::string wav;
    std::string language; ///< ISO 639-1; empty: unknown
    std::string prompt;   ///< terms that may occur, with their spelling
};
