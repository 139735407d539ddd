#include "service/dictation/Cleanups.h"

namespace {

// A hung upstream holds no more of the server's threads than this, and one account no more than that.
constexpr int atOnce = 32;
constexpr int atOncePerAccount = 4;

} // namespace

Cleanups::Cleanups(Accounts &accounts, Cleaner &cleaner)
    : m_accounts(accounts),
      m_cleaner(cleaner),
      m_places(atOnce, atOncePerAccount)
{
}

std::expected<Cleaner::Result, Refusal> Cleanups::edited(const Account &account,
                                                         const CleanupRequest &request,
                                                         const std::function<bool()> &isUnwanted)
{
    const auto place = m_places.take(account.id);
    if (!place)
        return std::unexpected(
            Refusal::tooMany("Too many texts are being edited just now. Try again in a moment.", 3));
    if (!m_accounts.spendText(account,
                              static_cast<std::int64_t>(request.text.size() + request.vocabulary.size())))
        return std::unexpected(Refusal::quotaExceeded());
    return m_cleaner.edited(request, isUnwanted);
}
