#pragma once

class Database;

/// The tables of the service's database, as they have grown.
namespace Schema {

enum class Older { isBroughtUpToDate, isRefused };

/// Makes the tables where there are none, and brings those of an older program up to date in place; safe
/// while other processes do the same. Only a server does the latter, since an older one may still run beside
/// a command. Throws std::runtime_error when a newer program has written the file, or an older one and that
/// is refused.
void ensure(Database &database, Older older);

} // namespace Schema
