#pragma once

#include <string>
#include <string_view>

/// The secret that a client shows with every request. Only its hash is ever stored.
namespace SessionToken {

/// "svs_" and 256 random bits as unpadded base64url.
std::string fresh();
/// SHA-256 of the token, 32 bytes.
std::string hash(std::string_view token);
/// Whether two hashes are equal, in a time that does not depend on where they differ.
bool equalHashes(std::string_view a, std::string_view b);
/// The token of an "Authorization" header of the form "Bearer {token}"; empty when it has another form.
std::string_view inHeader(std::string_view authorization);

} // namespace SessionToken
