#include "service/dictation/Transcriptions.h"

#include "service/speech/Recording.h"

#include <cmath>
#include <utility>

Transcriptions::Transcriptions(Accounts &accounts, Transcriber &transcriber)
    : m_accounts(accounts),
      m_transcriber(transcriber),
      m_places(transcriber.places())
{
}

std::expected<Transcriptions::Place, Refusal> Transcriptions::place(const Account &account)
{
    if (account.remainingSeconds() == 0)
        return std::unexpected(Refusal::quotaExceeded());
    if (!m_places.try_acquire())
        return std::unexpected(Refusal::rateLimited());
    return Place(&m_places, [](std::counting_semaphore<> *places) { places->release(); });
}

std::expected<Transcriptions::Transcript, Refusal>
Transcriptions::transcribe(const Account &account, Upload upload, const std::function<bool()> &isUnwanted)
{
    const auto duration = Recording::secondsOfWav(upload.wav);
    if (!duration)
        return std::unexpected(Refusal::badRequest(duration.error()));
    const auto seconds = static_cast<std::int64_t>(std::ceil(*duration));
    const auto remaining = m_accounts.charge(account, seconds);
    if (!remaining)
        return std::unexpected(Refusal::quotaExceeded());
    try {
        auto text = m_transcriber.transcribe(std::move(upload), isUnwanted);
        if (text)
            return Transcript{std::move(*text), *duration, seconds, *remaining};
        m_accounts.refund(account, seconds);
        return std::unexpected(text.error());
    } catch (...) {
        m_accounts.refund(account, seconds);
        throw;
    }
}
