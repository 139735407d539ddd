#include "service/http/Reply.h"

#include <string_view>

void Reply::give(httplib::Response &response, const Outcome &outcome)
{
    if (outcome)
        answer(response, *outcome);
    else
        refuse(response, outcome.error());
}

void Reply::answer(httplib::Response &response, const nlohmann::json &body)
{
    response.status = 200;
    response.set_content(body.dump(), "application/json");
}

void Reply::refuse(httplib::Response &response, const Refusal &refusal)
{
    response.status = refusal.status;
    if (refusal.retryAfterSeconds)
        response.set_header("Retry-After", std::to_string(*refusal.retryAfterSeconds));
    response.set_content(refusal.body(), "application/json");
}

void Reply::allowOnly(httplib::Server &server, const char *path, const char *method)
{
    const auto explain = [method](const httplib::Request &, httplib::Response &response) {
        response.set_header("Allow", method);
        refuse(response, Refusal::forStatus(405));
    };
    const auto explainUnread = [explain](const httplib::Request &request, httplib::Response &response,
                                         const httplib::ContentReader &) { explain(request, response); };
    if (std::string_view(method) != "GET")
        server.Get(path, explain);
    if (std::string_view(method) != "POST")
        server.Post(path, explainUnread);
    server.Put(path, explainUnread);
    server.Patch(path, explainUnread);
    server.Delete(path, explainUnread);
}
