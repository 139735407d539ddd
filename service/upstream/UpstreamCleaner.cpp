#include "service/upstream/UpstreamCleaner.h"

#include "service/protocol/BoundedJson.h"
#include "service/text/Utf8.h"
#include "service/upstream/CleanupPrompt.h"
#include "service/upstream/UpstreamFault.h"

#include <nlohmann/json.hpp>

#include <algorithm>

using namespace std::chrono_literals;

namespace {

using nlohmann::json;

constexpr std::chrono::seconds patienceOfClients = 50s; // they wait for a minute

bool hasFewWords(std::string_view text)
{
    constexpr int fewest = 4; // of less, nothing can be edited
    int words = 0;
    for (size_t at = 0; words < fewest; ++words) {
        at = text.find_first_not_of(" \t\r\n", at);
        if (at == std::string_view::npos)
            return true;
        at = std::min(text.find_first_of(" \t\r\n", at), text.size());
    }
    return false;
}

/// What a model said to itself in "<think>" blocks is not part of its answer.
std::string withoutThoughts(std::string answer)
{
    constexpr std::string_view begin = "<think>";
    constexpr std::string_view end = "</think>";
    for (size_t from = answer.find(begin); from != std::string::npos; from = answer.find(begin)) {
        const size_t to = answer.find(end, from);
        answer.erase(from, to == std::string::npos ? to : to + end.size() - from);
    }
    return answer;
}

/// The model's text; nothing when the answer has another form or was cut off.
std::optional<std::string> textIn(const std::string &answer)
{
    const json none;
    const json document = BoundedJson::parsed(answer);
    const json choices = document.is_object() ? document.value("choices", none) : none;
    const json choice = choices.is_array() && !choices.empty() ? choices[0] : none;
    const json message = choice.is_object() ? choice.value("message", none) : none;
    const json content = message.is_object() ? message.value("content", none) : none;
    if (!content.is_string() || choice.value("finish_reason", none) == "length")
        return {};
    return content.get<std::string>();
}

} // namespace

std::expected<Cleaner::Result, Refusal> UpstreamCleaner::edited(const CleanupRequest &request,
                                                                const std::function<bool()> &isUnwanted)
{
    const std::string raw(Utf8::trimmed(request.text));
    if (hasFewWords(raw))
        return Result{raw, true};
    const json body{{"model", model()},
                    {"messages",
                     {{{"role", "system"}, {"content", CleanupPrompt::with(request.vocabulary)}},
                      {{"role", "user"}, {"content", raw}}}}};
    const auto answer = m_client.post(
        {"/chat/completions", "application/json", body.dump(-1, ' ', false, json::error_handler_t::replace)},
        std::min(m_client.upstream().patience, patienceOfClients), isUnwanted);
    if (!answer)
        return std::unexpected(answer.error());
    const auto text = textIn(*answer);
    if (!text)
        return std::unexpected(UpstreamFault::notUnderstood());
    const std::string edited(Utf8::trimmed(withoutThoughts(*text)));
    return edited.empty() ? Result{raw, true} : Result{edited, false};
}
