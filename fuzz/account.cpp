#include "cloud/account/AccountClient.h"
#include "cloud/account/AccountError.h"
#include "cloud/labs/LabsClient.h"
#include "cloud/labs/LabsProvider.h"

#include <algorithm>
#include <cstdlib>

/// Whatever the account's service answers becomes a sentence, a session, a list or a text.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const auto *bytes = reinterpret_cast<const char *>(data);
    const QByteArray body(bytes, static_cast<qsizetype>(size));
    const QString text = QString::fromUtf8(body);
    for (const int status : {0, 401, 403, 429, 500}) {
        if (AccountFailure::outcome(status, ServiceErrorBody::decode(body), 1).error.message.isEmpty())
            std::abort();
    }
    const auto session = AccountSession::decode(body, text);
    if (session ? session->token.isEmpty() : session.error().message.isEmpty())
        std::abort();
    const auto sessions = DeviceSession::decodeList(body).value_or(QList<DeviceSession>());
    if (std::ranges::any_of(sessions,
                            [](const auto &each) { return each.id.isEmpty() || each.device.isEmpty(); }))
        std::abort();
    const auto answer = LabsAnswer::decode(body, LabsProvider::claude);
    if (answer ? answer->text.isEmpty() : answer.error().message.isEmpty())
        std::abort();
    (void)AccountInfo::decode(body);
    (void)LabsProviders::decode(body);
    (void)AccountClient::date(text);
    (void)AccountClient::looksLikeEmail(text);
    if (AccountClient::trim(text).isEmpty() || AccountClient::seconds(text).value_or(0) > 3600)
        std::abort();
    return 0;
}
