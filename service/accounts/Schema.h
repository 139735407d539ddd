#pragma once

class Database;

/// The tables of the service's database, as they have grown.
namespace Schema {

/// Brings the tables up to date in place; safe while other processes do the same. Throws
/// std::runtime_error when a newer program has written the file.
void ensure(Database &database);

} // namespace Schema
