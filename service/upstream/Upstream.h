#pragma once

#include <chrono>
#include <expected>
#include <filesystem>
#include <string>
#include <string_view>

/// A server that speaks the OpenAI-compatible interface, and how it is to be used.
struct Upstream
{
    std::string origin; ///< scheme, host and port
    std::string path;   ///< stands before "/audio/transcriptions"; without a slash at its end
    std::string key;    ///< the bearer token; empty: none is sent
    std::string speechModel;
    std::string chatModel;
    std::chrono::seconds patience{150}; ///< for a whole answer

    /// Reads a base address such as "https://speech.example.com/v1". Plain HTTP is for this machine alone,
    /// since keys and speech would be readable on the way. The error is a sentence.
    static std::expected<Upstream, std::string> at(std::string_view address);
    /// Whether the host in this "host" or "host:port" is this machine itself.
    static bool isThisMachine(std::string_view place);
    static bool isHostAndPort(std::string_view place);
    /// The key in a file, or in the variable SAYVANE_UPSTREAM_KEY when there is no file; empty when there is
    /// neither. Throws std::runtime_error when the file cannot be read or holds no key.
    static std::string keyIn(const std::filesystem::path &file);
};
