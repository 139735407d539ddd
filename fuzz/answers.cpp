#include "cloud/speech/ChatRequest.h"
#include "cloud/speech/ProviderFailure.h"
#include "cloud/speech/ServiceFailure.h"

#include <cstdlib>

/// Whatever a service answers becomes a sentence or a text.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const auto *bytes = reinterpret_cast<const char *>(data);
    const QByteArray body(bytes, static_cast<qsizetype>(size));
    const QString text = QString::fromUtf8(body);
    for (const int status : {0, 401, 403, 429, 500}) {
        if (ProviderFailure::failure(Provider::groq, status, body).description.isEmpty() ||
            ServiceFailure::accountFailure(status, AccountErrorBody::decode(body))
                .error.description.isEmpty())
            std::abort();
    }
    const auto delay = ServiceFailure::accountRetryDelay(502, std::nullopt, text);
    if (!delay || delay->count() < 0 || delay->count() > 5000)
        std::abort();
    (void)ChatRequest::answer(body, text);
    if (ChatRequest::withoutReasoning(text).contains(QStringLiteral("<think>")))
        std::abort();
    return 0;
}
