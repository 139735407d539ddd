#include "service/protocol/BoundedJson.h"

#include <nlohmann/json.hpp>

nlohmann::json BoundedJson::parsed(std::string_view text)
{
    using nlohmann::json;
    constexpr int deepest = 16;
    bool tooDeep = false;
    json document = json::parse(
        text,
        [&tooDeep](int depth, json::parse_event_t, json &) {
            tooDeep = tooDeep || depth > deepest;
            return !tooDeep;
        },
        false);
    return tooDeep ? json(json::value_t::discarded) : document;
}
