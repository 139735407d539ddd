#pragma once

#include "service/accounts/Accounts.h"
#include "service/accounts/Places.h"
#include "service/dictation/Cleaner.h"

/// Cleanups for accounts: how many at once, and how much text in a day. May be used from several threads.
class Cleanups
{
public:
    Cleanups(Accounts &accounts, Cleaner &cleaner);

    std::expected<Cleaner::Result, Refusal> edited(const Account &account, const CleanupRequest &request,
                                                   const std::function<bool()> &isUnwanted);

    const std::string &model() const { return m_cleaner.model(); }

private:
    Accounts &m_accounts;
    Cleaner &m_cleaner;
    Places m_places;
};
