#include "service/Service.h"

#include "service/cleanup/Capitals.h"
#include "service/cleanup/Editor.h"
#include "service/cleanup/FullStops.h"
#include "service/http/Reply.h"
#include "service/protocol/Authentication.h"
#include "service/protocol/CleanupRequest.h"
#include "service/protocol/Language.h"
#include "service/protocol/Refusal.h"
#include "service/protocol/TextBody.h"
#include "service/protocol/TranscribeForm.h"
#include "service/text/Vocabulary.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <memory>

namespace {

using Reply::allowOnly;
using Reply::answer;
using Reply::refuse;

constexpr int recordingsAtOnce = 6;
constexpr size_t formLimit = TranscribeForm::maximumRecording + size_t{64} * 1024;
constexpr auto speechModel = "pocketsphinx-en-us";
constexpr auto cleanupModel = "sayvane-rules";

/// Known before anything of the body is read; a body in chunks is counted while it arrives.
bool announcesMoreThan(const httplib::Request &request, size_t limit)
{
    return request.get_header_value<uint64_t>("Content-Length") > limit;
}

/// The recogniser's words as a sentence, the user's terms in their own spelling.
std::string sentence(const std::string &words, const std::string &prompt)
{
    return textOf(FullStops::endingText(Capitals::set(Vocabulary(prompt).spelled(wordsOf(words)))));
}

} // namespace

Service::Service(HttpsServer &server, Accounts &accounts, SpeechEngine &speech)
    : m_server(server),
      m_accounts(accounts),
      m_speech(speech),
      m_places(recordingsAtOnce)
{
    server.set_payload_max_length(formLimit);
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
    if (account->remainingSeconds() == 0)
        return refuse(response, Refusal::quotaExceeded());
    if (!request.is_multipart_form_data())
        return refuse(response, Refusal::badRequest("The request is not a multipart form."));
    if (announcesMoreThan(request, formLimit))
        return refuse(response, Refusal::tooLarge("The recording is too long. The limit is 25 MB."));
    if (!m_places.try_acquire())
        return refuse(response, Refusal::rateLimited());
    const auto release = [](std::counting_semaphore<> *places) { places->release(); };
    const std::unique_ptr<std::counting_semaphore<>, decltype(release)> place(&m_places, release);

    auto form = TranscribeForm::read(body);
    if (!form)
        return refuse(response, form.error());
    if (!Language::mayBeEnglish(form->language())) {
        return refuse(response,
                      {400,
                       "unsupported_language",
                       "This service understands English only. Choose English or automatic as the language.",
                       {},
                       {}});
    }
    const auto recording = Recording::fromWav(form->recording());
    if (!recording)
        return refuse(response, Refusal::badRequest(recording.error()));
    form->dropRecording();
    answerRecording(request, response, *account, *recording, form->prompt());
}

void Service::answerRecording(const Request &request, Response &response, const Account &account,
                              const Recording &recording, const std::string &prompt)
{
    const auto seconds = static_cast<std::int64_t>(std::ceil(recording.seconds()));
    // Charged beforehand, so that requests at the same time cannot share the last seconds.
    const auto remaining = m_accounts.charge(account, seconds);
    if (!remaining)
        return refuse(response, Refusal::quotaExceeded());
    try {
        const auto words = m_speech.transcribe(recording, [&] { return m_server.isAbandoned(request); });
        if (words) {
            return answer(response, {{"text", sentence(*words, prompt)},
                                     {"model", speechModel},
                                     {"seconds", seconds},
                                     {"remainingSeconds", *remaining}});
        }
    } catch (...) {
        m_accounts.refund(account, seconds);
        throw;
    }
    m_accounts.refund(account, seconds);
    refuse(response, {503, "stopping", "The service is stopping. Try again.", {}, {}});
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
    const Editor::Result result = Editor::edited(wanted->text, wanted->vocabulary, wanted->language);
    answer(response, {{"text", result.text}, {"model", cleanupModel}, {"skipped", result.skipped}});
}

void Service::models(const Request &request, Response &response)
{
    if (authenticated(request, response)) {
        answer(response,
               {{"object", "list"},
                {"data",
                 {{{"id", speechModel}, {"object", "model"}}, {{"id", cleanupModel}, {"object", "model"}}}}});
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
