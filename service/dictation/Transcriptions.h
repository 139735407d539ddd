#pragma once

#include "service/accounts/Accounts.h"
#include "service/accounts/Places.h"
#include "service/dictation/Transcriber.h"

/// Transcriptions for accounts: how many at once, and what they cost.
class Transcriptions
{
public:
    struct Transcript
    {
        std::string text;
        double duration = 0;      ///< of the recording, in seconds
        std::int64_t seconds = 0; ///< charged
        std::int64_t remainingSeconds = 0;
    };
    /// The right to hold one recording in memory.
    using Place = Places::Place;

    Transcriptions(Accounts &accounts, Transcriber &transcriber);

    /// To be had before anything of a recording is read. Refuses when all are taken, or all that one account
    /// may have, or when nothing is left of its allowance.
    std::expected<Place, Refusal> place(const Account &account);
    /// Reserves the recording's seconds beforehand, so that requests at the same time cannot share the last
    /// ones; they are used only when there is a text in the end.
    std::expected<Transcript, Refusal> transcribe(const Account &account, Upload upload,
                                                  const std::function<bool()> &isUnwanted);

    const std::string &model() const { return m_transcriber.model(); }
    std::string onlyLanguage() const { return m_transcriber.onlyLanguage(); }

private:
    Accounts &m_accounts;
    Transcriber &m_transcriber;
    Places m_places;
};
