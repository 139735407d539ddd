#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// The six digits that prove who signs in. Only a keyed hash of them is ever stored.
namespace SignInCode {

/// Each of the million codes is as likely as any other.
std::string fresh();
/// Sixteen random bytes.
std::string salt();
/// HMAC-SHA-256 (RFC 2104) of both, 32 bytes. The key is kept outside the database, so that a stolen one
/// gives no code away.
std::string hash(std::string_view digits, std::string_view salt, std::string_view key);
/// The key in this file, which is made where it is missing. Throws std::runtime_error.
std::string keyIn(const std::filesystem::path &file);
bool isWellFormed(std::string_view text);

} // namespace SignInCode
