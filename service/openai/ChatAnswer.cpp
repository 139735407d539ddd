#include "service/openai/ChatAnswer.h"

#include <nlohmann/json.hpp>

#include <ctime>
#include <random>

namespace {

using nlohmann::json;

/// What the object and every chunk of a stream begin with.
json envelope(const char *kind, const std::string &model)
{
    std::random_device random;
    const std::string id = "chatcmpl-" + std::to_string(random()) + std::to_string(random());
    return {{"id", id}, {"object", kind}, {"created", std::time(nullptr)}, {"model", model}};
}

} // namespace

std::string ChatAnswer::whole() const
{
    json answer = envelope("chat.completion", model);
    answer["choices"] = {{{"index", 0},
                          {"message", {{"role", "assistant"}, {"content", text}, {"refusal", nullptr}}},
                          {"logprobs", nullptr},
                          {"finish_reason", "stop"}}};
    return answer.dump();
}

std::string ChatAnswer::events() const
{
    json chunk = envelope("chat.completion.chunk", model);
    chunk["choices"] = {
        {{"index", 0}, {"delta", {{"role", "assistant"}, {"content", text}}}, {"finish_reason", nullptr}}};
    std::string events = "data: " + chunk.dump() + "\n\n";
    chunk["choices"] = {{{"index", 0}, {"delta", json::object()}, {"finish_reason", "stop"}}};
    return events + "data: " + chunk.dump() + "\n\ndata: [DONE]\n\n";
}
