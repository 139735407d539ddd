#pragma once

#include "service/accounts/Accounts.h"
#include "service/dictation/Cleanups.h"
#include "service/dictation/Transcriptions.h"
#include "service/http/HttpsServer.h"
#include "service/openai/AudioForm.h"

#include <functional>
#include <optional>

/// The same transcription and cleanup under the addresses, forms and errors of OpenAI's REST interface
/// (https://platform.openai.com/docs/api-reference): "/v1/audio/transcriptions",
/// "/v1/chat/completions", "/v1/models".
class OpenAiInterface
{
public:
    OpenAiInterface(HttpsServer &server, Accounts &accounts, Transcriptions &transcriptions,
                    Cleanups &cleanups);
    OpenAiInterface(const OpenAiInterface &) = delete;
    OpenAiInterface &operator=(const OpenAiInterface &) = delete;

private:
    using Request = httplib::Request;
    using Response = httplib::Response;
    using Outcome = std::optional<Refusal>; // nothing: answered

    Outcome transcribe(const Request &request, Response &response, const httplib::ContentReader &body);
    Outcome complete(const Request &request, Response &response, const httplib::ContentReader &body);
    Outcome list(const Request &request, Response &response);
    Outcome describe(const Request &request, Response &response);

    std::expected<Account, Refusal> account(const Request &request);
    void answer(Response &response, AudioForm::Format format,
                const Transcriptions::Transcript &transcript) const;

    HttpsServer &m_server;
    Accounts &m_accounts;
    Transcriptions &m_transcriptions;
    Cleanups &m_cleanups;
};
