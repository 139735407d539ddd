#pragma once

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <string_view>

class Database;

/// How often something may be tried, counted in the database so that neither a restart nor a second
/// process forgets it.
namespace AttemptLimits {

/// `count` attempts in any stretch of time as long as `window`, for each subject.
struct Limit
{
    std::string_view kind;
    int count = 0;
    std::chrono::seconds window; ///< a day at most
};

struct Attempt
{
    Limit limit;
    std::string subject; ///< who or what tries
};

/// Notes the attempts, or, when one of them is one too many, none, and returns how long to wait. To be
/// called inside a transaction.
std::optional<std::chrono::seconds> take(Database &database, std::span<const Attempt> attempts,
                                         std::chrono::sys_seconds now);

/// Forgets what no limit counts any more.
void forgetOld(Database &database, std::chrono::sys_seconds now);

} // namespace AttemptLimits
