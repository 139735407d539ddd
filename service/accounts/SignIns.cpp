#include "service/accounts/SignIns.h"

#include "service/accounts/AttemptLimits.h"
#include "service/accounts/Schema.h"
#include "service/accounts/SessionToken.h"
#include "service/accounts/SignInCode.h"
#include "service/accounts/Statement.h"
#include "service/accounts/Transaction.h"

#include <utility>
#include <vector>

using namespace std::chrono_literals;

namespace {

constexpr std::int64_t triesPerCode = 5;
constexpr std::int64_t lifetimeSeconds = std::chrono::seconds(SignIns::lifetime).count();
// Strangers who guess one account's code every day for a year succeed with a chance of about one in a
// hundred.
constexpr AttemptLimits::Limit codesPerAddress{"code by address", 5, 15min};
constexpr AttemptLimits::Limit codesPerKnown{"code by known network", 5, 15min};
constexpr AttemptLimits::Limit codesPerNetwork{"code by network", 20, 1h};
constexpr AttemptLimits::Limit triesPerAddress{"try by address", 30, 24h};
constexpr AttemptLimits::Limit triesPerStranger{"try by stranger", 10, 24h};
constexpr AttemptLimits::Limit triesPerKnown{"try by known network", 30, 24h};
constexpr AttemptLimits::Limit triesPerNetwork{"try by network", 60, 1h};

std::string together(std::string_view email, std::string_view network)
{
    return std::string(email).append(1, ' ').append(network);
}

} // namespace

SignIns::SignIns(const std::filesystem::path &database, std::string key, WallClock now, int codesPerDay)
    : m_database(database),
      m_key(std::move(key)),
      m_now(std::move(now)),
      m_codesPerDay(codesPerDay)
{
    Schema::ensure(m_database, Schema::Older::isBroughtUpToDate);
    forgetOld();
}

std::expected<SignIns::Code, SignIns::Failure> SignIns::issue(std::string_view email,
                                                              std::string_view network)
{
    const Code code{SignInCode::fresh(), m_now() + lifetime};
    const std::string salt = SignInCode::salt();
    const std::lock_guard lock(m_mutex);
    Transaction transaction(m_database);
    forgetOld();
    std::vector<AttemptLimits::Attempt> attempts{
        isKnown(email, network) ? AttemptLimits::Attempt{codesPerKnown, together(email, network)}
                                : AttemptLimits::Attempt{codesPerAddress, std::string(email)},
        AttemptLimits::Attempt{codesPerNetwork, std::string(network)}};
    if (m_codesPerDay > 0)
        attempts.push_back({{"code by anybody", m_codesPerDay, 24h}, {}});
    const auto wait = AttemptLimits::take(m_database, attempts, m_now());
    if (!wait) {
        m_database
            .prepare("INSERT OR REPLACE INTO sign_in(email, network, salt, code_hash, issued_at, expires_at)"
                     " VALUES(?, ?, ?, ?, ?, ?)")
            .bind(email)
            .bind(network)
            .bindBytes(salt)
            .bindBytes(SignInCode::hash(code.digits, salt, m_key))
            .bind(now())
            .bind(code.expires.time_since_epoch().count())
            .step();
    }
    transaction.commit();
    if (wait)
        return std::unexpected(Failure{Failure::Kind::tooMany, *wait});
    return code;
}

std::expected<void, SignIns::Failure> SignIns::redeem(std::string_view email, std::string_view digits,
                                                      std::string_view network)
{
    const std::lock_guard lock(m_mutex);
    Transaction transaction(m_database);
    forgetOld();
    auto query = m_database.prepare("SELECT salt, code_hash FROM sign_in WHERE email = ? AND expires_at > ?"
                                    " ORDER BY network = ? DESC, issued_at DESC LIMIT 1");
    query.bind(email).bind(now()).bind(network);
    const bool isLive = query.step();
    const std::string salt = isLive ? query.text(0) : "no code";
    const std::string expected = isLive ? query.text(1) : std::string();
    while (query.step())
        continue;
    // Computed in any case: a guesser does not learn who is signing in.
    const bool isRight = SessionToken::equalHashes(SignInCode::hash(digits, salt, m_key), expected);
    if (!isLive)
        return std::unexpected(Failure{Failure::Kind::noCode});
    auto tries =
        m_database.prepare("SELECT count(*) FROM code_try WHERE email = ? AND code_hash = ? AND network = ?");
    tries.bind(email).bindBytes(expected).bind(network).step();
    if (tries.number(0) >= triesPerCode)
        return std::unexpected(Failure{Failure::Kind::noCode});
    tries.step();

    std::vector<AttemptLimits::Attempt> attempts{{triesPerNetwork, std::string(network)}};
    if (isKnown(email, network)) {
        attempts.push_back({triesPerKnown, together(email, network)});
    } else {
        attempts.push_back({triesPerStranger, together(email, network)});
        attempts.push_back({triesPerAddress, std::string(email)});
    }
    if (const auto wait = AttemptLimits::take(m_database, attempts, m_now())) {
        transaction.commit();
        return std::unexpected(Failure{Failure::Kind::tooMany, *wait});
    }
    if (isRight) {
        m_database.prepare("DELETE FROM sign_in WHERE email = ? AND code_hash = ?")
            .bind(email)
            .bindBytes(expected)
            .step();
        m_database
            .prepare("INSERT OR REPLACE INTO known_network(email, network, signed_in_at) VALUES(?, ?, ?)")
            .bind(email)
            .bind(network)
            .bind(now())
            .step();
    } else {
        m_database.prepare("INSERT INTO code_try(email, code_hash, network, at) VALUES(?, ?, ?, ?)")
            .bind(email)
            .bindBytes(expected)
            .bind(network)
            .bind(now())
            .step();
    }
    transaction.commit();
    if (!isRight)
        return std::unexpected(Failure{Failure::Kind::wrongCode});
    return {};
}

bool SignIns::isKnown(std::string_view email, std::string_view network)
{
    auto query = m_database.prepare("SELECT 1 FROM known_network WHERE email = ? AND network = ?");
    return query.bind(email).bind(network).step();
}

void SignIns::forgetOld()
{
    m_database.prepare("DELETE FROM sign_in WHERE expires_at <= ?").bind(now()).step();
    m_database.prepare("DELETE FROM code_try WHERE at <= ?").bind(now() - lifetimeSeconds).step();
    AttemptLimits::forgetOld(m_database, m_now());
}

std::int64_t SignIns::now() const
{
    return m_now().time_since_epoch().count();
}
