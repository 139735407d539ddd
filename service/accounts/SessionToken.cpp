#include "service/accounts/SessionToken.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

#include <algorithm>
#include <array>
#include <stdexcept>

std::string SessionToken::fresh()
{
    std::array<unsigned char, 32> random;
    if (RAND_bytes(random.data(), random.size()) != 1)
        throw std::runtime_error("no random numbers");
    std::array<unsigned char, 45> encoded; // 44 characters, the last of them padding, and a zero
    EVP_EncodeBlock(encoded.data(), random.data(), random.size());
    std::string token = "svs_";
    for (size_t i = 0; i < 43; ++i) {
        const char c = static_cast<char>(encoded[i]);
        token += c == '+' ? '-' : c == '/' ? '_' : c;
    }
    return token;
}

std::string SessionToken::hash(std::string_view token)
{
    std::array<unsigned char, 32> digest;
    unsigned size = 0;
    if (EVP_Digest(token.data(), token.size(), digest.data(), &size, EVP_sha256(), nullptr) != 1)
        throw std::runtime_error("no SHA-256");
    return {reinterpret_cast<const char *>(digest.data()), size};
}

bool SessionToken::equalHashes(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && CRYPTO_memcmp(a.data(), b.data(), a.size()) == 0;
}

std::string_view SessionToken::inHeader(std::string_view authorization)
{
    constexpr std::string_view scheme = "bearer ";
    const auto same = [](char a, char b) { return a == b || (a >= 'A' && a <= 'Z' && a - 'A' + 'a' == b); };
    if (!std::ranges::equal(authorization.substr(0, scheme.size()), scheme, same))
        return {};
    return authorization.substr(scheme.size());
}
