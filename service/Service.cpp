#include "service/Service.h"

#include "service/http/Reply.h"
#include "service/protocol/Authentication.h"
#include "service/protocol/CleanupRequest.h"
#include "service/protocol/FormParts.h"
#include "service/protocol/Refusal.h"
#include "service/protocol/TextBody.h"
#include "service/protocol/TranscribeForm.h"

#include <nlohmann/json.hpp>

namespace {

using Reply::allowOnly;
using Reply::answer;
using Reply::refuse;

} // namespace

Service::Service(HttpsServer &server, Accounts &accounts, Transcriptions &transcriptions, Cleanups &cleanups)
    : m_server(server),
      m_accounts(accounts),
      m_transcriptions(transcriptions),
      m_cleanups(cleanups)
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
    server.Get("/models", [this](const Request &request, Response &response) { models(request, response); });
    server.Get("/health", [](const Request &, Response &response) { answer(response, {{"status", "ok"}}); });
    allowOnly(server, "/v1/transcribe", "POST");
    allowOnly(server, "/v1/cleanup", "POST");
    for (const char *path : {"/models", "/health"})
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
    const auto account = authenticated(request, response);
    if (!account)
        return;
    const auto text = TextBody::read(request, body, CleanupRequest::maximumBody);
    if (!text)
        return refuse(response, text.error());
    const auto wanted = CleanupRequest::fromJson(*text);
    if (!wanted)
        return refuse(response, wanted.error());
    const auto result = m_cleanups.edited(*account, *wanted, [&] { return m_server.isAbandoned(request); });
    if (!result)
        return refuse(response, result.error());
    answer(response, {{"text", result->text}, {"model", m_cleanups.model()}, {"skipped", result->skipped}});
}

void Service::models(const Request &request, Response &response)
{
    if (authenticated(request, response)) {
        answer(response, {{"object", "list"},
                          {"data",
                           {{{"id", m_transcriptions.model()}, {"object", "model"}},
                            {{"id", m_cleanups.model()}, {"object", "model"}}}}});
    }
}

std::optional<Account> Service::authenticated(const Request &request, Response &response)
{
    const auto account = Authentication::accountOf(request, m_accounts);
    if (account)
        return *account;
    refuse(response, account.error());
    return {};
}
