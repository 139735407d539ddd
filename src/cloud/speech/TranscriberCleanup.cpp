#include "cloud/speech/Transcriber.h"

#include "base/Text.h"
#include "cloud/account/Credentials.h"
#include "cloud/speech/ChatRequest.h"
#include "cloud/speech/SpeechFailure.h"
#include "preferences/Prefs.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

// Fewer words are not worth a request.
constexpr int minimumCleanupWords = 4;

} // namespace

QCoro::Task<Transcriber::Text> Transcriber::cleanup(QString transcript, std::stop_token stop)
{
    if (::Text::wordCount(transcript) < minimumCleanupWords)
        co_return transcript;
    const Provider provider = m_prefs.provider();
    if (provider == Provider::sayvane)
        co_return co_await accountCleanup(transcript, stop);
    co_return co_await ownKeyCleanup(provider, transcript, stop);
}

QCoro::Task<Transcriber::Text> Transcriber::ownKeyCleanup(Provider provider, QString transcript,
                                                          std::stop_token stop)
{
    const auto key = co_await m_credentials.apiKey(provider, stop);
    if (!key)
        co_return std::unexpected(key.error());
    const QString prompt = CleanupPrompt::with(m_prefs.vocabulary());
    const auto url = endpoint(u"/chat/completions"_s, provider);
    if (!url)
        co_return std::unexpected(url.error());

    const auto inForm = [&](ChatRequest::Form form) -> RequestBuilder {
        return [=, apiKey = *key,
                address = *url](const QString &model) -> std::expected<HttpRequest, FlowError> {
            return HttpRequest{.method = "POST",
                               .url = address,
                               .headers = {{"Authorization", "Bearer " + apiKey.toUtf8()},
                                           {"Content-Type", "application/json"}},
                               .body = ChatRequest::body(form, provider, model, prompt, transcript),
                               .largestAnswer = largestText};
        };
    };
    const RequestBuilder full = inForm(ChatRequest::Form::full);
    const RequestBuilder minimal = inForm(ChatRequest::Form::minimal);

    const QString model = m_prefs.chatModel();
    Answer reply = co_await send(provider, ModelPurpose::chat, model, full, stop);
    if (stop.stop_requested())
        co_return std::unexpected(FlowError::platform(u"Cancelled."_s));
    if (!reply && reply.error().kind == FlowError::Kind::api &&
        ProviderFailure::mentionsRejectedParameter(reply.error().description)) {
        // Read again: the model may have been replaced meanwhile. With another provider chosen it would be
        // that one's model.
        const QString currentModel = m_prefs.provider() == provider ? m_prefs.chatModel() : model;
        reply = co_await send(provider, ModelPurpose::chat, currentModel, minimal, stop);
    }
    if (!reply)
        co_return std::unexpected(reply.error());
    const Text answer = ChatRequest::answer(reply->body, transcript);
    if (!answer)
        co_return std::unexpected(answer.error());
    const QString edited = ChatRequest::withoutReasoning(*answer).trimmed();
    co_return edited.isEmpty() ? transcript : edited;
}

QCoro::Task<Transcriber::Text> Transcriber::accountCleanup(QString transcript, std::stop_token stop)
{
    const auto token = co_await m_credentials.apiKey(Provider::sayvane, stop);
    if (!token)
        co_return std::unexpected(token.error());
    const auto url = endpoint(u"/v1/cleanup"_s, Provider::sayvane);
    if (!url)
        co_return std::unexpected(url.error());

    QJsonObject object{{u"text"_s, transcript}};
    if (const QString vocabulary = m_prefs.vocabulary(); !vocabulary.isEmpty())
        object.insert(u"vocabulary"_s, vocabulary);
    if (const QString language = m_prefs.language(); !language.isEmpty())
        object.insert(u"language"_s, language);
    const HttpRequest request{
        .method = "POST",
        .url = *url,
        .headers = {{"Authorization", "Bearer " + token->toUtf8()}, {"Content-Type", "application/json"}},
        .body = QJsonDocument(object).toJson(QJsonDocument::Compact),
        .largestAnswer = largestText};

    const Answer reply = co_await send(request, Provider::sayvane, true, stop);
    if (!reply)
        co_return std::unexpected(reply.error());
    const QJsonDocument answer = QJsonDocument::fromJson(reply->body);
    const QJsonValue text = answer.object().value("text"_L1);
    if (!answer.isObject() || !(text.isString() || text.isUndefined() || text.isNull()))
        co_return std::unexpected(FlowError::platform(FlowError::tr("The answer could not be read.")));
    const QString edited = text.toString().trimmed();
    co_return edited.isEmpty() ? transcript : edited;
}
