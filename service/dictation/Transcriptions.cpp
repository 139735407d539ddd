#include "service/dictation/Transcriptions.h"

#include "service/speech/Recording.h"

#include <cmath>
#include <utility>

namespace {
constexpr int placesPerAccount = 3; // a dictation, a file, and one that a client gave up
}

Transcriptions::Transcriptions(Accounts &accounts, Transcriber &transcriber)
    : m_accounts(accounts),
      m_transcriber(transcriber),
      m_places(transcriber.places(), placesPerAccount)
{
}

std::expected<Transcriptions::Place, Refusal> Transcriptions::place(const Account &account)
{
    if (account.remainingSeconds() == 0)
        return std::unexpected(Refusal::quotaExceeded());
    auto place = m_places.take(account.id);
    if (!place)
        return std::unexpected(Refusal::rateLimited());
    return std::move(*place);
}

std::expected<Transcriptions::Transcript, Refusal>
Transcriptions::transcribe(const Account &account, Upload upload, const std::function<bool()> &isUnwanted)
{
    const auto duration = Recording::secondsOfWav(upload.wav);
    if (!duration)
        return std::unexpected(Refusal::badRequest(duration.error()));
    const auto seconds = static_cast<std::int64_t>(std::ceil(*duration));
    auto reservation = m_accounts.reserve(account, seconds);
    if (!reservation)
        return std::unexpected(Refusal::quotaExceeded());
    auto text = m_transcriber.transcribe(std::move(upload), isUnwanted);
    if (!text)
        return std::unexpected(text.error());
    reservation->settle();
    return Transcript{std::move(*text), *duration, seconds, reservation->remainingSeconds()};
}
