#include "service/accounts/SignInCode.h"

#include <openssl/evp.h>
#include <openssl/rand.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace {

constexpr int iterations = 100'000; // about 30 ms
constexpr std::uint32_t codes = 1'000'000;

template <size_t Size>
std::array<unsigned char, Size> randomBytes()
{
    std::array<unsigned char, Size> bytes;
    if (RAND_bytes(bytes.data(), bytes.size()) != 1)
        throw std::runtime_error("no random numbers");
    return bytes;
}

} // namespace

std::string SignInCode::fresh()
{
    constexpr std::uint32_t fair = UINT32_MAX - UINT32_MAX % codes; // above it some codes would gain
    std::uint32_t number = fair;
    while (number >= fair) {
        const auto bytes = randomBytes<sizeof number>();
        std::memcpy(&number, bytes.data(), sizeof number);
    }
    const std::string digits = std::to_string(number % codes);
    return std::string(6 - digits.size(), '0') + digits;
}

std::string SignInCode::salt()
{
    const auto bytes = randomBytes<16>();
    return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

std::string SignInCode::hash(std::string_view digits, std::string_view salt)
{
    std::array<unsigned char, 32> hash;
    if (PKCS5_PBKDF2_HMAC(digits.data(), static_cast<int>(digits.size()),
                          reinterpret_cast<const unsigned char *>(salt.data()), static_cast<int>(salt.size()),
                          iterations, EVP_sha256(), hash.size(), hash.data()) != 1)
        throw std::runtime_error("no PBKDF2");
    return {reinterpret_cast<const char *>(hash.data()), hash.size()};
}

bool SignInCode::isWellFormed(std::string_view text)
{
    return text.size() == 6 && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}
