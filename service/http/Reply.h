#pragma once

#include "service/protocol/Refusal.h"

#include <httplib.h>
#include <nlohmann/json_fwd.hpp>

/// How every address answers.
namespace Reply {

void answer(httplib::Response &response, const nlohmann::json &body);
void refuse(httplib::Response &response, const Refusal &refusal);

/// Answers requests for a known address with another method than the one that it takes.
void allowOnly(httplib::Server &server, const char *path, const char *method);

} // namespace Reply
