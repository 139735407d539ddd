#pragma once

#include "service/upstream/UpstreamClient.h"

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>

/// The assistants that whoever runs the service has configured, by the names that clients ask for:
/// "claude" and "chatgpt".
///
/// The settings of each are "address" (of an OpenAI-compatible server, with or without the
/// "/chat/completions" at its end), "model" and, where one is needed, "key". They stand in a file that only
/// its owner may read, as {"claude": {"address": "…", "model": "…", "key": "…"}, "chatgpt": {…}}, or in
/// environment variables such as SAYVANE_LABS_CLAUDE_ADDRESS, which win over the file.
class Assistants
{
public:
    using Environment = std::function<const char *(const char *name)>;

    /// None is configured.
    Assistants() = default;
    /// Reads both sources; an empty path stands for no file. Throws std::runtime_error, whose message never
    /// holds a key, when something is wrong or missing.
    Assistants(const std::filesystem::path &file, const Environment &environment);

    static bool isKnown(std::string_view name);
    /// How people call it.
    static std::string titleOf(std::string_view name);

    /// Nothing when it is not configured.
    const UpstreamClient *find(std::string_view name) const;

private:
    std::map<std::string, UpstreamClient, std::less<>> m_clients;
};
