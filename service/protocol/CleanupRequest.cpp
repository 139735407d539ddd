#include "service/protocol/CleanupRequest.h"

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

std::expected<CleanupRequest, Refusal> CleanupRequest::fromJson(std::string_view body)
{
    const json document = parsed(body);
    if (!document.is_object())
        return std::unexpected(Refusal::badRequest("The request is not a JSON object in UTF-8."));
    CleanupRequest request;
    for (const auto &[name, text] :
         {std::pair("text", &request.text), std::pair("vocabulary", &request.vocabulary),
          std::pair("language", &request.language)}) {
        const auto member = document.find(name);
        if (member == document.end())
            continue;
        if (!member->is_string()) {
            return std::unexpected(
                Refusal::badRequest(std::string("The member ") + name + " is not a text."));
        }
        *text = member->get<std::string>();
    }
    if (!document.contains("text"))
        return std::unexpected(Refusal::badRequest("The request has no text."));
    return request;
}
