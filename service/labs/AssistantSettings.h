#pragma once

#include "service/upstream/Upstream.h"

#include <filesystem>
#include <map>
#include <string>

/// What an operator says about one assistant, as it was written.
struct AssistantSettings
{
    std::string address;
    std::string model;
    std::string key;

    /// The server that they name. Throws std::runtime_error; `assistant` stands in the message.
    Upstream upstream(const std::string &assistant) const;

    /// Those in a JSON file that others may not read, by the names of the assistants. Throws
    /// std::runtime_error when it has another form, or is not to be had.
    static std::map<std::string, AssistantSettings> in(const std::filesystem::path &file);
    /// The member with this name: "address", "model" or "key"; null for any other.
    std::string *named(std::string_view name);
};
