#include "service/openai/ChatRequest.h"

#include "service/openai/OpenAiError.h"
#include "service/protocol/BoundedJson.h"

#include <nlohmann/json.hpp>

#include <array>
#include <optional>

namespace {

using nlohmann::json;

/// A parameter that asks for more than an edited text.
std::optional<std::string> unavailable(const json &document)
{
    constexpr std::array neutral{std::pair("tools", "[]"),
                                 std::pair("functions", "[]"),
                                 std::pair("audio", "null"),
                                 std::pair("n", "1"),
                                 std::pair("logprobs", "false"),
                                 std::pair("modalities", R"(["text"])"),
                                 std::pair("response_format", R"({"type":"text"})")};
    for (const auto &[name, value] : neutral) {
        const auto member = document.find(name);
        if (member != document.end() && !member->is_null() && *member != json::parse(value))
            return name;
    }
    return {};
}

/// A message's content is a text or a list of parts; parts that are not text cannot be edited.
std::optional<std::string> textIn(const json &content)
{
    if (content.is_string())
        return content.get<std::string>();
    if (!content.is_array())
        return {};
    std::string text;
    for (const json &part : content) {
        if (!part.is_object() || part.value("type", json()) != "text" || !part.contains("text") ||
            !part["text"].is_string())
            return {};
        text += part["text"].get<std::string>();
    }
    return text;
}

std::expected<std::string, Refusal> lastUserText(const json &document)
{
    const auto messages = document.find("messages");
    if (messages == document.end() || !messages->is_array())
        return std::unexpected(OpenAiError::badParameter("messages", "The request has no messages."));
    for (auto message = messages->rbegin(); message != messages->rend(); ++message) {
        if (!message->is_object() || message->value("role", json()) != "user")
            continue;
        if (auto text = textIn(message->value("content", json())))
            return std::move(*text);
        return std::unexpected(
            OpenAiError::badParameter("messages", "The last message of the user is not a text."));
    }
    return std::unexpected(OpenAiError::badParameter("messages", "There is no message of the user."));
}

} // namespace

std::expected<ChatRequest, Refusal> ChatRequest::fromJson(std::string_view body)
{
    const json document = BoundedJson::parsed(body);
    if (!document.is_object())
        return std::unexpected(Refusal::badRequest("The request is not a JSON object in UTF-8."));
    const json model = document.value("model", json());
    if (!model.is_string() || model.get_ref<const std::string &>().empty())
        return std::unexpected(OpenAiError::badParameter("model", "The request names no model."));
    if (const auto name = unavailable(document)) {
        return std::unexpected(OpenAiError::badParameter(
            *name, "This model edits a dictated text and nothing else; it cannot honour " + *name + '.'));
    }
    auto text = lastUserText(document);
    if (!text)
        return std::unexpected(text.error());
    return ChatRequest{model.get<std::string>(), std::move(*text), document.value("stream", json()) == true};
}
