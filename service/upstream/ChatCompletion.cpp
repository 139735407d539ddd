#include "service/upstream/ChatCompletion.h"

#include "service/protocol/BoundedJson.h"
#include "service/text/Utf8.h"

#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

/// The member, or null when there is none or the value is no object.
json member(const json &value, const char *name)
{
    return value.is_object() ? value.value(name, json()) : json();
}

std::string textOf(const json &value)
{
    return value.is_string() ? value.get<std::string>() : std::string();
}

std::optional<std::int64_t> countOf(const json &value)
{
    return value.is_number_unsigned() ? std::optional(value.get<std::int64_t>()) : std::nullopt;
}

/// A server sends the text whole or as a list of parts.
std::string contentOf(const json &content)
{
    if (!content.is_array())
        return textOf(content);
    std::string text;
    for (const json &part : content)
        text += textOf(member(part, "text"));
    return text;
}

/// What stands in "<think>" blocks is not meant for the reader.
std::string withoutThoughts(std::string text)
{
    constexpr std::string_view begin = "<think>";
    constexpr std::string_view end = "</think>";
    for (size_t from = text.find(begin); from != std::string::npos; from = text.find(begin)) {
        const size_t to = text.find(end, from);
        text.erase(from, to == std::string::npos ? to : to + end.size() - from);
    }
    return text;
}

} // namespace

std::optional<ChatCompletion> ChatCompletion::in(std::string_view body)
{
    const json document = BoundedJson::parsed(body);
    const json choices = member(document, "choices");
    const json choice = choices.is_array() && !choices.empty() ? choices[0] : json();
    const json message = member(choice, "message");
    if (!message.is_object())
        return {};
    const json usage = member(document, "usage");
    ChatCompletion completion{
        .text = std::string(Utf8::trimmed(withoutThoughts(contentOf(member(message, "content"))))),
        .model = textOf(member(document, "model")),
        .inputTokens = countOf(member(usage, "prompt_tokens")),
        .outputTokens = countOf(member(usage, "completion_tokens"))};
    completion.refused =
        !textOf(member(message, "refusal")).empty() ||
        (completion.text.empty() && textOf(member(choice, "finish_reason")) == "content_filter");
    return completion;
}
