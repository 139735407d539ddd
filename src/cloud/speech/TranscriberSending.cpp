#include "cloud/speech/Transcriber.h"

#include "cloud/account/AccountStatus.h"
#include "cloud/speech/SpeechFailure.h"

using namespace Qt::StringLiterals;

namespace {

const FlowError cancelled = FlowError::platform(u"Cancelled."_s);

/// A body with a member of another type than it should be tells nothing.
ServiceRefusal whole(const ServiceRefusal &refusal)
{
    ServiceRefusal whole = refusal;
    if (!whole.body.isSound)
        whole.body = {};
    return whole;
}

std::optional<std::chrono::milliseconds> accountRetryDelay(const ServiceRefusal &refusal)
{
    return ServiceFailure::accountRetryDelay(whole(refusal));
}

} // namespace

QCoro::Task<Transcriber::Answer> Transcriber::send(Provider provider, ModelPurpose purpose, QString model,
                                                   RequestBuilder build, std::stop_token stop)
{
    const Answer first = co_await buildAndSend(provider, model, build, stop);
    if (first || stop.stop_requested() || first.error().kind != FlowError::Kind::api ||
        !ProviderFailure::mentionsUnknownModel(first.error().description))
        co_return first;
    const auto replacement = co_await successor(purpose, provider, model, stop);
    if (!replacement || stop.stop_requested())
        co_return first;
    const QString replacingModel = *replacement;
    co_return co_await buildAndSend(provider, replacingModel, build, stop);
}

QCoro::Task<Transcriber::Answer> Transcriber::buildAndSend(Provider provider, QString model,
                                                           RequestBuilder build, std::stop_token stop)
{
    const auto request = build(model);
    if (!request)
        co_return std::unexpected(request.error());
    co_return co_await send(*request, provider, true, stop);
}

QCoro::Task<Transcriber::Answer> Transcriber::send(HttpRequest request, Provider provider, bool mayRetry,
                                                   std::stop_token stop)
{
    if (provider == Provider::sayvane) {
        const ServiceClient::Answer answer = co_await m_service.send(
            request, mayRetry ? ServiceClient::RetryRule{accountRetryDelay} : ServiceClient::RetryRule(),
            stop);
        if (answer)
            co_return *answer;
        co_return std::unexpected(failure(answer.error()));
    }
    const auto response = co_await m_http.send(request, stop);
    if (stop.stop_requested())
        co_return std::unexpected(cancelled);
    if (!response)
        co_return std::unexpected(FlowError::platform(response.error().message));
    if (response->isSuccess())
        co_return *response;
    co_return std::unexpected(ProviderFailure::failure(provider, response->status, response->body));
}

FlowError Transcriber::failure(const ServiceClient::Failure &why)
{
    if (const auto *error = std::get_if<TransportError>(&why))
        return error->kind == TransportError::Kind::cancelled ? cancelled
                                                              : FlowError::platform(error->message);
    const ServiceRefusal refusal = whole(std::get<ServiceRefusal>(why));
    if (refusal.isCurrent && refusal.body.remainingSeconds)
        m_account.setRemainingSeconds(*refusal.body.remainingSeconds);
    const ServiceFailure::Outcome outcome = ServiceFailure::accountFailure(refusal);
    if (!outcome.rejectsSession || !refusal.isCurrent || !m_service.dropSession())
        return outcome.error;
    return FlowError::api(FlowError::tr("Signed out. Sign in again in Settings."));
}
