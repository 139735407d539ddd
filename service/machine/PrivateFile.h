#pragma once

#include <filesystem>
#include <string_view>

/// Files that only their owner may read, from the first byte on.
namespace PrivateFile {

/// Replaces the file whole, or leaves the old one as it was and throws std::runtime_error.
void replace(const std::filesystem::path &path, std::string_view content);

} // namespace PrivateFile
