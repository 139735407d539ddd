#pragma once

#include <string>
#include <string_view>

/// The six digits that prove who signs in. Only their hash is ever stored.
namespace SignInCode {

/// Each of the million codes is as likely as any other.
std::string fresh();
/// Sixteen random bytes.
std::string salt();
/// PBKDF2 with HMAC-SHA-256 (RFC 8018), 32 bytes: slow enough that a stolen database does not give the
/// code away before it expires.
std::string hash(std::string_view digits, std::string_view salt);
bool isWellFormed(std::string_view text);

} // namespace SignInCode
