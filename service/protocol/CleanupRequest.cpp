#include "service/protocol/CleanupRequest.h"

#include "service/protocol/TextMembers.h"

std::expected<CleanupRequest, Refusal> CleanupRequest::fromJson(std::string_view body)
{
    const auto members = TextMembers::in(body, {"text", "vocabulary", "language"});
    if (!members)
        return std::unexpected(members.error());
    if (!members->has("text"))
        return std::unexpected(Refusal::badRequest("The request has no text."));
    return CleanupRequest{(*members)["text"], (*members)["vocabulary"], (*members)["language"]};
}
