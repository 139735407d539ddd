#include "service/openai/OpenAiError.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace {

struct Kind
{
    const char *type;
    std::string code;
};

/// What clients compare, by the interface's own words.
Kind kindOf(const Refusal &refusal)
{
    if (refusal.code == "quota_exceeded")
        return {"insufficient_quota", "insufficient_quota"};
    if (refusal.status == 429)
        return {"requests", "rate_limit_exceeded"};
    if (refusal.status == 401)
        return {"invalid_request_error", "invalid_api_key"};
    return {refusal.status < 500 ? "invalid_request_error" : "server_error", refusal.code};
}

} // namespace

std::string OpenAiError::body(const Refusal &refusal)
{
    const Kind kind = kindOf(refusal);
    const nlohmann::json parameter =
        refusal.parameter.empty() ? nlohmann::json() : nlohmann::json(refusal.parameter);
    const nlohmann::json error{
        {"message", refusal.message}, {"type", kind.type}, {"param", parameter}, {"code", kind.code}};
    // The name of a model, for one, may hold bytes that are not text.
    return nlohmann::json{{"error", error}}.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

Refusal OpenAiError::unknownModel(const std::string &model, const std::string &available)
{
    return {404,
            "model_not_found",
            "The model `" + model.substr(0, 100) + "` does not exist here. Available: " + available + '.',
            {},
            {},
            "model"};
}

Refusal OpenAiError::badParameter(std::string parameter, std::string message)
{
    return {400, "invalid_value", std::move(message), {}, {}, std::move(parameter)};
}
