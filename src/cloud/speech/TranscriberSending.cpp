#include "cloud/speech/Transcriber.h"

#include "base/Sleep.h"
#include "cloud/account/AccountSession.h"
#include "cloud/account/AccountStatus.h"
#include "cloud/speech/ProviderFailure.h"
#include "cloud/speech/ServiceFailure.h"

using namespace Qt::StringLiterals;

namespace {

const FlowError cancelled = FlowError::platform(u"Cancelled."_s);

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
    return attempt(request, provider, m_account.session(), mayRetry, stop);
}

/// `session` is the number of the one that the request belongs to.
QCoro::Task<Transcriber::Answer> Transcriber::attempt(HttpRequest request, Provider provider, int session,
                                                      bool mayRetry, std::stop_token stop)
{
    const auto response = co_await m_http.send(request, stop);
    if (stop.stop_requested())
        co_return std::unexpected(cancelled);
    if (!response)
        co_return std::unexpected(FlowError::platform(response.error().message));
    if (response->isSuccess())
        co_return *response;
    if (provider == Provider::sayvane)
        co_return co_await afterServiceRefusal(request, *response, session, mayRetry, stop);
    co_return std::unexpected(ProviderFailure::failure(provider, response->status, response->body));
}

QCoro::Task<Transcriber::Answer> Transcriber::afterServiceRefusal(HttpRequest request, HttpResponse response,
                                                                  int session, bool mayRetry,
                                                                  std::stop_token stop)
{
    const auto body = AccountErrorBody::decode(response.body);
    if (mayRetry) {
        const auto code = body ? body->code : std::nullopt;
        if (const auto delay =
                ServiceFailure::accountRetryDelay(response.status, code, response.header("Retry-After"))) {
            co_await sleepFor(m_clock, *delay, stop);
            if (stop.stop_requested())
                co_return std::unexpected(cancelled);
            co_return co_await attempt(request, Provider::sayvane, session, false, stop);
        }
    }
    const bool isNews = session == m_account.session();
    if (isNews && body && body->remainingSeconds)
        m_account.setRemainingSeconds(*body->remainingSeconds);
    const ServiceFailure::Outcome outcome = ServiceFailure::accountFailure(response.status, body);
    co_return std::unexpected(outcome.rejectsSession && isNews ? rejectedToken(outcome.error)
                                                               : outcome.error);
}

FlowError Transcriber::rejectedToken(const FlowError &otherwise)
{
    if (!m_account.dropRejectedSession(m_sessions))
        return otherwise;
    return FlowError::api(FlowError::tr("Signed out. Sign in again in Settings."));
}
