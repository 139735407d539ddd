#include "service/accounts/AttemptLimits.h"

#include "service/accounts/Database.h"
#include "service/accounts/Statement.h"

#include <algorithm>
#include <cstdint>

using namespace std::chrono_literals;

namespace {

std::int64_t number(std::chrono::sys_seconds moment)
{
    return moment.time_since_epoch().count();
}

std::chrono::seconds waitFor(Database &database, const AttemptLimits::Attempt &attempt,
                             std::chrono::sys_seconds now)
{
    const auto &[limit, subject] = attempt;
    auto query = database.prepare(
        "SELECT at FROM attempt WHERE kind = ? AND subject = ? AND at > ? ORDER BY at DESC LIMIT 1 OFFSET ?");
    query.bind(limit.kind).bind(subject).bind(number(now - limit.window)).bind(limit.count - 1);
    if (!query.step())
        return 0s;
    const std::chrono::seconds wait{query.number(0) - number(now - limit.window)};
    return std::min(wait, limit.window); // a clock that was set back
}

} // namespace

std::optional<std::chrono::seconds> AttemptLimits::take(Database &database, std::span<const Attempt> attempts,
                                                        std::chrono::sys_seconds now)
{
    auto wait = 0s;
    for (const Attempt &attempt : attempts)
        wait = std::max(wait, waitFor(database, attempt, now));
    if (wait > 0s)
        return wait;
    for (const Attempt &attempt : attempts) {
        database.prepare("INSERT INTO attempt(kind, subject, at) VALUES(?, ?, ?)")
            .bind(attempt.limit.kind)
            .bind(attempt.subject)
            .bind(number(now))
            .step();
    }
    return {};
}

void AttemptLimits::forgetOld(Database &database, std::chrono::sys_seconds now)
{
    database.prepare("DELETE FROM attempt WHERE at <= ?").bind(number(now - 24h)).step();
}
