#pragma once

#include <filesystem>
#include <string>

/// The server's self-signed certificate and its private key, as PEM files.
namespace Certificate {

/// Makes both when there are none, when they do not belong together, when the certificate soon
/// expires, or when it does not name `host`. It always names localhost, 127.0.0.1 and ::1.
/// Throws std::runtime_error.
void ensure(const std::filesystem::path &certificate, const std::filesystem::path &privateKey,
            const std::string &host);

} // namespace Certificate
