#include "service/labs/LabsRequest.h"

#include "service/labs/Assistants.h"
#include "service/protocol/TextBody.h"
#include "service/text/Utf8.h"

#include <algorithm>
#include <optional>

namespace {

std::optional<LabsRequest::Mode> modeNamed(const std::string &name)
{
    if (name == "answer")
        return LabsRequest::Mode::answer;
    if (name == "reply")
        return LabsRequest::Mode::reply;
    return name == "rewrite" ? std::optional(LabsRequest::Mode::rewrite) : std::nullopt;
}

/// A code and nothing that an assistant could take for an instruction.
bool isLanguageCode(std::string_view text)
{
    return text.size() <= 16 && std::ranges::all_of(text, [](char c) {
               return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                      c == '-' || c == '_';
           });
}

} // namespace

std::expected<LabsRequest, Refusal> LabsRequest::fromJson(std::string_view body)
{
    const auto members = TextMembers::in(body, {"prompt", "provider", "mode", "language", "context"});
    if (!members)
        return std::unexpected(members.error());
    const auto bad = [](const char *message) { return std::unexpected(Refusal::badRequest(message)); };
    const auto mode = modeNamed((*members)["mode"]);
    LabsRequest request{std::string(Utf8::trimmed((*members)["prompt"])), (*members)["provider"],
                        mode.value_or(Mode::answer), std::string(Utf8::trimmed((*members)["language"])),
                        std::string(Utf8::trimmed((*members)["context"]))};
    if (request.prompt.empty())
        return bad("The request has no prompt.");
    if (!Assistants::isKnown(request.provider))
        return bad("The provider is not one of claude and chatgpt.");
    if (!mode)
        return bad("The mode is not one of answer, reply and rewrite.");
    if (!isLanguageCode(request.language))
        return bad("The language is not a language code.");
    if (Utf8::characters(request.prompt) > maximumPrompt)
        return bad("The prompt is too long. The limit is 8000 characters.");
    if (Utf8::characters(request.context) > maximumContext)
        return bad("The context is too long. The limit is 4000 characters.");
    return request;
}
