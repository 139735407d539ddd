#include "service/protocol/CleanupRequest.h"

#include "service/protocol/BoundedJson.h"

#include <nlohmann/json.hpp>

std::expected<CleanupRequest, Refusal> CleanupRequest::fromJson(std::string_view body)
{
    const nlohmann::json document = BoundedJson::parsed(body);
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
