#include "service/accounts/SignIns.h"

#include "service/accounts/AttemptLimits.h"
#include "service/accounts/Schema.h"
#include "service/accounts/SessionToken.h"
#include "service/accounts/SignInCode.h"
#include "service/accounts/Statement.h"
#include "service/accounts/Transaction.h"

#include <array>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr int triesPerCode = 5;
// Guessing one account's code every day for a year succeeds with a chance of about one in a hundred.
constexpr AttemptLimits::Limit codesPerAddress{"code by address", 5, 15min};
constexpr AttemptLimits::Limit codesPerNetwork{"code by network", 20, 1h};
constexpr AttemptLimits::Limit triesPerAddress{"try by address", 30, 24h};
constexpr AttemptLimits::Limit triesPerNetwork{"try by network", 60, 1h};

} // namespace

SignIns::SignIns(const std::filesystem::path &database, WallClock now)
    : m_database(database),
      m_now(std::move(now))
{
    Schema::ensure(m_database);
    forgetOld();
}

std::expected<SignIns::Code, SignIns::Failure> SignIns::issue(std::string_view email,
                                                              std::string_view network)
{
    if (const auto wait = waitFor(codesPerAddress, email, codesPerNetwork, network))
        return std::unexpected(Failure{Failure::Kind::tooMany, *wait});
    const Code code{SignInCode::fresh(), m_now() + lifetime};
    const std::string salt = SignInCode::salt();
    const std::string hash = SignInCode::hash(code.digits, salt);
    const std::lock_guard lock(m_mutex);
    m_database
        .prepare("INSERT OR REPLACE INTO sign_in(email, salt, code_hash, expires_at) VALUES(?, ?, ?, ?)")
        .bind(email)
        .bindBytes(salt)
        .bindBytes(hash)
        .bind(code.expires.time_since_epoch().count())
        .step();
    return code;
}

std::expected<void, SignIns::Failure> SignIns::redeem(std::string_view email, std::string_view digits,
                                                      std::string_view network)
{
    if (const auto wait = waitFor(triesPerAddress, email, triesPerNetwork, network))
        return std::unexpected(Failure{Failure::Kind::tooMany, *wait});
    std::string salt = "no code";
    std::string expected;
    {
        const std::lock_guard lock(m_mutex);
        auto code =
            m_database.prepare("UPDATE sign_in SET tries = tries + 1"
                               " WHERE email = ? AND tries < ? AND expires_at > ? RETURNING salt, code_hash");
        code.bind(email).bind(triesPerCode).bind(now());
        if (code.step()) {
            salt = code.text(0);
            expected = code.text(1);
            code.step();
        }
    }
    // Computed in any case and outside the lock: a guesser neither learns who is signing in nor holds
    // the others up.
    const std::string actual = SignInCode::hash(digits, salt);
    if (expected.empty())
        return std::unexpected(Failure{Failure::Kind::noCode});
    if (!SessionToken::equalHashes(actual, expected))
        return std::unexpected(Failure{Failure::Kind::wrongCode});
    const std::lock_guard lock(m_mutex);
    auto use = m_database.prepare("DELETE FROM sign_in WHERE email = ? AND code_hash = ? RETURNING email");
    if (!use.bind(email).bindBytes(expected).changesAny())
        return std::unexpected(Failure{Failure::Kind::noCode}); // another request was faster
    return {};
}

std::optional<std::chrono::seconds> SignIns::waitFor(const Limit &byAddress, std::string_view email,
                                                     const Limit &byNetwork, std::string_view network)
{
    const std::array<AttemptLimits::Attempt, 2> attempts{
        {{byAddress, std::string(email)}, {byNetwork, std::string(network)}}};
    const std::lock_guard lock(m_mutex);
    Transaction transaction(m_database);
    forgetOld();
    const auto wait = AttemptLimits::take(m_database, attempts, m_now());
    transaction.commit();
    return wait;
}

void SignIns::forgetOld()
{
    m_database.prepare("DELETE FROM sign_in WHERE expires_at <= ?").bind(now()).step();
    AttemptLimits::forgetOld(m_database, m_now());
}

std::int64_t SignIns::now() const
{
    return m_now().time_since_epoch().count();
}
