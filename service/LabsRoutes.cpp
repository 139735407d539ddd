#include "service/LabsRoutes.h"

#include "service/labs/LabsFault.h"
#include "service/labs/LabsPrompt.h"
#include "service/labs/LabsRequest.h"
#include "service/protocol/Authentication.h"
#include "service/protocol/TextBody.h"
#include "service/upstream/ChatCompletion.h"

using namespace std::chrono_literals;
using nlohmann::json;

namespace {

constexpr int questionsAtOnce = 32;
constexpr int questionsPerAccount = 8;
constexpr std::int64_t price = 30; // seconds of the daily allowance
constexpr auto patience = 40s;     // clients wait for 45

std::string bodyFor(const LabsRequest &question, const std::string &model)
{
    const json body{{"model", model},
                    {"messages",
                     {{{"role", "system"}, {"content", LabsPrompt::system(question)}},
                      {{"role", "user"}, {"content", LabsPrompt::user(question)}}}}};
    return body.dump();
}

} // namespace

LabsRoutes::LabsRoutes(HttpsServer &server, Accounts &accounts, const Assistants &assistants)
    : m_server(server),
      m_accounts(accounts),
      m_assistants(assistants),
      m_places(questionsAtOnce, questionsPerAccount)
{
    server.Get("/v1/labs/providers", [this](const httplib::Request &request, httplib::Response &response) {
        Reply::give(response, providers(request));
    });
    server.Post("/v1/labs/answer", [this](const httplib::Request &request, httplib::Response &response,
                                          const httplib::ContentReader &reader) {
        const auto body = TextBody::read(request, reader, LabsRequest::maximumBody);
        Reply::give(response, body ? answer(request, *body) : Reply::Outcome(std::unexpected(body.error())));
    });
    Reply::allowOnly(server, "/v1/labs/providers", "GET");
    Reply::allowOnly(server, "/v1/labs/answer", "POST");
}

Reply::Outcome LabsRoutes::providers(const httplib::Request &request)
{
    const auto account = Authentication::accountOf(request, m_accounts);
    if (!account)
        return std::unexpected(account.error());
    return json{{"claude", m_assistants.find("claude") != nullptr},
                {"chatgpt", m_assistants.find("chatgpt") != nullptr}};
}

Reply::Outcome LabsRoutes::answer(const httplib::Request &request, const std::string &body)
{
    const auto account = Authentication::accountOf(request, m_accounts);
    if (!account)
        return std::unexpected(account.error());
    const auto question = LabsRequest::fromJson(body);
    if (!question)
        return std::unexpected(question.error());
    const UpstreamClient *assistant = m_assistants.find(question->provider);
    if (!assistant)
        return std::unexpected(LabsFault::unavailable(Assistants::titleOf(question->provider)));
    const auto place = m_places.take(account->id);
    if (!place)
        return std::unexpected(Refusal::tooMany("Too many questions are being answered just now.", 3));
    // Beforehand, so that questions at the same time cannot share the last seconds.
    auto reservation = m_accounts.reserve(*account, price);
    if (!reservation)
        return std::unexpected(Refusal::quotaExceeded());
    Reply::Outcome outcome = asked(*assistant, *question, request);
    if (outcome)
        reservation->settle();
    return outcome;
}

Reply::Outcome LabsRoutes::asked(const UpstreamClient &assistant, const LabsRequest &question,
                                 const httplib::Request &request) const
{
    const std::string title = Assistants::titleOf(question.provider);
    const std::string &model = assistant.upstream().chatModel;
    const auto body = assistant.post({"/chat/completions", "application/json", bodyFor(question, model)},
                                     patience, [&] { return m_server.isAbandoned(request); });
    if (!body)
        return std::unexpected(LabsFault::named(body.error(), title));
    const auto completion = ChatCompletion::in(*body);
    if (completion && completion->refused)
        return std::unexpected(LabsFault::declined(title));
    if (!completion || completion->text.empty())
        return std::unexpected(LabsFault::notUnderstood(title));
    json answer{{"text", completion->text},
                {"provider", question.provider},
                {"model", completion->model.empty() ? model : completion->model}};
    if (completion->inputTokens)
        answer["inputTokens"] = *completion->inputTokens;
    if (completion->outputTokens)
        answer["outputTokens"] = *completion->outputTokens;
    return answer;
}
