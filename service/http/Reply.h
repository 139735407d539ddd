#pragma once

#include "service/protocol/Refusal.h"

#include <httplib.h>
#include <nlohmann/json.hpp>

#include <expected>

/// How every address answers.
namespace Reply {

/// The JSON body of an answer, or why there is none.
using Outcome = std::expected<nlohmann::json, Refusal>;

void give(httplib::Response &response, const Outcome &outcome);
void answer(httplib::Response &response, const nlohmann::json &body);
void refuse(httplib::Response &response, const Refusal &refusal);

/// Answers requests for a known address with another method than the one that it takes.
void allowOnly(httplib::Server &server, const char *path, const char *method);

} // namespace Reply
