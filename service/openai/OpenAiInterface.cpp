#include "service/openai/OpenAiInterface.h"

#include "service/machine/Log.h"
#include "service/openai/ChatAnswer.h"
#include "service/openai/ChatRequest.h"
#include "service/openai/OpenAiError.h"
#include "service/protocol/Authentication.h"
#include "service/protocol/TextBody.h"

#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

constexpr auto jsonType = "application/json";

void refuse(httplib::Response &response, const Refusal &refusal)
{
    response.status = refusal.status;
    if (refusal.retryAfterSeconds)
        response.set_header("Retry-After", std::to_string(*refusal.retryAfterSeconds));
    else if (refusal.status == 429)
        response.set_header("x-should-retry", "false"); // or clients would ask on until midnight
    response.set_content(OpenAiError::body(refusal), jsonType);
}

json modelObject(const std::string &id)
{
    return {{"id", id}, {"object", "model"}, {"created", 0}, {"owned_by", "sayvane"}};
}

/// Refuses what work refuses, and what it throws.
template <typename Work>
void carryOut(httplib::Response &response, const Work &work)
{
    try {
        if (const std::optional<Refusal> refusal = work())
            refuse(response, *refusal);
    } catch (const std::exception &e) {
        Log::failure(e.what());
        refuse(response, Refusal::internalError());
    }
}

void allowOnly(httplib::Server &server, const char *path, const char *method)
{
    const auto explain = [method](const httplib::Request &request, httplib::Response &response) {
        response.set_header("Allow", method);
        refuse(response, {405, "method_not_supported", "This address does not take " + request.method + '.'});
    };
    const auto explainUnread = [explain](const httplib::Request &request, httplib::Response &response,
                                         const httplib::ContentReader &) { explain(request, response); };
    server.Get(path, explain);
    server.Post(path, explainUnread);
    server.Put(path, explainUnread);
    server.Patch(path, explainUnread);
    server.Delete(path, explainUnread);
}

} // namespace

OpenAiInterface::OpenAiInterface(HttpsServer &server, Accounts &accounts, Transcriptions &transcriptions,
                                 Cleanups &cleanups)
    : m_server(server),
      m_accounts(accounts),
      m_transcriptions(transcriptions),
      m_cleanups(cleanups)
{
    using Body = httplib::ContentReader;
    server.Post("/v1/audio/transcriptions",
                [this](const Request &request, Response &response, const Body &body) {
                    carryOut(response, [&] { return transcribe(request, response, body); });
                });
    server.Post("/v1/chat/completions", [this](const Request &request, Response &response, const Body &body) {
        carryOut(response, [&] { return complete(request, response, body); });
    });
    server.Get("/v1/models", [this](const Request &request, Response &response) {
        carryOut(response, [&] { return list(request, response); });
    });
    server.Get("/v1/models/(.+)", [this](const Request &request, Response &response) {
        carryOut(response, [&] { return describe(request, response); });
    });
    allowOnly(server, "/v1/audio/transcriptions", "POST");
    allowOnly(server, "/v1/chat/completions", "POST");
    allowOnly(server, "/v1/models", "GET");
    allowOnly(server, "/v1/models/.+", "GET");
}

OpenAiInterface::Outcome OpenAiInterface::transcribe(const Request &request, Response &response,
                                                     const httplib::ContentReader &body)
{
    const auto user = account(request);
    if (!user)
        return user.error();
    const auto place = m_transcriptions.place(*user);
    if (!place)
        return place.error();
    auto form = AudioForm::read(request, body);
    if (!form)
        return form.error();
    if (form->model != m_transcriptions.model())
        return OpenAiError::unknownModel(form->model, m_transcriptions.model());
    if (form->format == AudioForm::Format::verboseJson && m_transcriptions.onlyLanguage().empty()) {
        return OpenAiError::badParameter("response_format",
                                         "This model does not tell the language; verbose_json needs it.");
    }
    const auto transcript = m_transcriptions.transcribe(*user, std::move(form->upload),
                                                        [&] { return m_server.isAbandoned(request); });
    if (!transcript) {
        Refusal refusal = transcript.error();
        if (refusal.status == 400 && refusal.parameter.empty())
            refusal.parameter = refusal.code == "unsupported_language" ? "language" : "file";
        return refusal;
    }
    answer(response, form->format, *transcript);
    return {};
}

void OpenAiInterface::answer(Response &response, AudioForm::Format format,
                             const Transcriptions::Transcript &transcript) const
{
    if (format == AudioForm::Format::text)
        return response.set_content(transcript.text + '\n', "text/plain; charset=utf-8");
    json body{{"text", transcript.text}, {"usage", {{"type", "duration"}, {"seconds", transcript.seconds}}}};
    if (format == AudioForm::Format::verboseJson) {
        body["task"] = "transcribe";
        body["language"] = m_transcriptions.onlyLanguage();
        body["duration"] = transcript.duration;
    }
    response.set_content(body.dump(), jsonType);
}

OpenAiInterface::Outcome OpenAiInterface::complete(const Request &request, Response &response,
                                                   const httplib::ContentReader &body)
{
    const auto user = account(request);
    if (!user)
        return user.error();
    const auto text = TextBody::read(request, body, CleanupRequest::maximumBody);
    if (!text)
        return text.error();
    const auto chat = ChatRequest::fromJson(*text);
    if (!chat)
        return chat.error();
    if (chat->model != m_cleanups.model())
        return OpenAiError::unknownModel(chat->model, m_cleanups.model());
    const auto edited =
        m_cleanups.edited(*user, {chat->text, {}, {}}, [&] { return m_server.isAbandoned(request); });
    if (!edited)
        return edited.error();
    const ChatAnswer answer{m_cleanups.model(), edited->text};
    if (chat->stream)
        response.set_content(answer.events(), "text/event-stream");
    else
        response.set_content(answer.whole(), jsonType);
    return {};
}

OpenAiInterface::Outcome OpenAiInterface::list(const Request &request, Response &response)
{
    if (const auto user = account(request); !user)
        return user.error();
    const json models{modelObject(m_transcriptions.model()), modelObject(m_cleanups.model())};
    response.set_content(json{{"object", "list"}, {"data", models}}.dump(), jsonType);
    return {};
}

OpenAiInterface::Outcome OpenAiInterface::describe(const Request &request, Response &response)
{
    if (const auto user = account(request); !user)
        return user.error();
    const std::string id = request.matches[1];
    if (id != m_transcriptions.model() && id != m_cleanups.model())
        return OpenAiError::unknownModel(id, m_transcriptions.model() + ", " + m_cleanups.model());
    response.set_content(modelObject(id).dump(), jsonType);
    return {};
}

std::expected<Account, Refusal> OpenAiInterface::account(const Request &request)
{
    return Authentication::accountOf(request, m_accounts);
}
