#include "service/Service.h"

#include "service/accounts/SessionToken.h"
#include "service/protocol/CleanupRequest.h"
#include "service/protocol/FormParts.h"
#include "service/protocol/Refusal.h"
#include "service/protocol/TextBody.h"
#include "service/protocol/TranscribeForm.h"

#include <nlohmann/json.hpp>

namespace {

void refuse(httplib::Response &response, const Refusal &refusal)
{
    response.status = refusal.status;
    if (refusal.retryAfterSeconds)
        response.set_header("Retry-After", std::to_string(*refusal.retryAfterSeconds));
    response.set_content(refusal.body(), "application/json");
}

void answer(httplib::Response &response, const nlohmann::json &body)
{
    response.status = 200;
    response.set_content(body.dump(), "application/json");
}

/// Answers requests for a known address with a method that it does not take.
void allowOnly(httplib::Server &server, const char *path, const char *method)
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

} // namespace

Service::Service(HttpsServer &server, Accounts &accounts, Transcriptions &transcriptions, Cleaner &cleaner)
    : m_server(server),
      m_accounts(accounts),
      m_transcriptions(transcriptions),
      m_cleaner(cleaner)
{
    server.set_payload_max_length(FormParts::maximumBody);
    server.Post("/v1/transcribe",
                [this](const Request &request, Response &response, const httplib::ContentReader &body) {
                    transcribe(request, response, body);
                });
    server.Post("/v1/cleanup",
                [this](const Request &request, Response &response, const httplib::ContentReader &body) {
                    cleanup(request, response, body);
                });
    server.Get("/v1/me", [this](const Request &request, Response &response) { me(request, response); });
    server.Get("/models", [this](const Request &request, Response &response) { models(request, response); });
    server.Get("/health", [](const Request &, Response &response) { answer(response, {{"status", "ok"}}); });
    allowOnly(server, "/v1/transcribe", "POST");
    allowOnly(server, "/v1/cleanup", "POST");
    for (const char *path : {"/v1/me", "/models", "/health"})
        allowOnly(server, path, "GET");
    // Without these the library would read a whole body into memory before it looks for the address.
    const auto unknown = [](const Request &, Response &response, const httplib::ContentReader &) {
        refuse(response, Refusal::forStatus(404));
    };
    server.Post(".*", unknown);
    server.Put(".*", unknown);
    server.Patch(".*", unknown);
    server.Delete(".*", unknown);
}

void Service::transcribe(const Request &request, Response &response, const httplib::ContentReader &body)
{
    const auto account = authenticated(request, response);
    if (!account)
        return;
    const auto place = m_transcriptions.place(*account);
    if (!place)
        return refuse(response, place.error());
    auto upload = TranscribeForm::read(request, body);
    if (!upload)
        return refuse(response, upload.error());
    const auto transcript = m_transcriptions.transcribe(*account, std::move(*upload),
                                                        [&] { return m_server.isAbandoned(request); });
    if (!transcript)
        return refuse(response, transcript.error());
    answer(response, {{"text", transcript->text},
                      {"model", m_transcriptions.model()},
                      {"seconds", transcript->seconds},
                      {"remainingSeconds", transcript->remainingSeconds}});
}

void Service::cleanup(const Request &request, Response &response, const httplib::ContentReader &body)
{
    if (!authenticated(request, response))
        return;
    const auto text = TextBody::read(request, body, CleanupRequest::maximumBody);
    if (!text)
        return refuse(response, text.error());
    const auto wanted = CleanupRequest::fromJson(*text);
    if (!wanted)
        return refuse(response, wanted.error());
    const auto result = m_cleaner.edited(*wanted, [&] { return m_server.isAbandoned(request); });
    if (!result)
        return refuse(response, result.error());
    answer(response, {{"text", result->text}, {"model", m_cleaner.model()}, {"skipped", result->skipped}});
}

void Service::me(const Request &request, Response &response)
{
    if (const auto account = authenticated(request, response)) {
        answer(response, {{"email", account->email},
                          {"plan", "self-hosted"},
                          {"status", "active"},
                          {"dailyMinutes", account->dailySeconds / 60},
                          {"usedTodaySeconds", account->usedSeconds},
                          {"remainingSeconds", account->remainingSeconds()}});
    }
}

void Service::models(const Request &request, Response &response)
{
    if (authenticated(request, response)) {
        answer(response, {{"object", "list"},
                          {"data",
                           {{{"id", m_transcriptions.model()}, {"object", "model"}},
                            {{"id", m_cleaner.model()}, {"object", "model"}}}}});
    }
}

std::optional<Account> Service::authenticated(const Request &request, Response &response)
{
    const std::string header = request.get_header_value("Authorization");
    const auto token = SessionToken::inHeader(header);
    auto account = token.empty() ? std::nullopt : m_accounts.find(token);
    if (!account)
        refuse(response, Refusal::unauthorized());
    return account;
}
