#include "service/protocol/TextMembers.h"

#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

/// Nesting deeper than any request of ours is cut off while reading, so that it costs neither stack nor
/// memory.
json parsed(std::string_view body)
{
    constexpr int deepest = 16;
    bool tooDeep = false;
    json document = json::parse(
        body,
        [&tooDeep](int depth, json::parse_event_t, json &) {
            tooDeep = tooDeep || depth > deepest;
            return !tooDeep;
        },
        false);
    return tooDeep ? json(json::value_t::discarded) : document;
}

} // namespace

std::expected<TextMembers, Refusal> TextMembers::in(std::string_view body,
                                                    std::initializer_list<std::string_view> names)
{
    const json document = parsed(body);
    if (!document.is_object())
        return std::unexpected(Refusal::badRequest("The request is not a JSON object in UTF-8."));
    TextMembers result;
    for (const std::string_view name : names) {
        const auto member = document.find(name);
        if (member == document.end())
            continue;
        if (!member->is_string()) {
            return std::unexpected(
                Refusal::badRequest("The member " + std::string(name) + " is not a text."));
        }
        result.m_members.emplace(name, member->get<std::string>());
    }
    return result;
}

std::string TextMembers::operator[](std::string_view name) const
{
    const auto member = m_members.find(name);
    return member == m_members.end() ? std::string() : member->second;
}
