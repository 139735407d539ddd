#pragma once

#include <filesystem>

/// Copies of the database.
namespace Backup {

/// Writes a copy that is whole and of one moment, also while a server works, and only then replaces
/// `copy` with it. Throws std::runtime_error.
void write(const std::filesystem::path &database, const std::filesystem::path &copy);

} // namespace Backup
