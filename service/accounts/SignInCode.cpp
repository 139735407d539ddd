#include "service/accounts/SignInCode.h"

#include "service/machine/PrivateFile.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

constexpr size_t keySize = 32;
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

std::string SignInCode::hash(std::string_view digits, std::string_view salt, std::string_view key)
{
    std::string text(salt);
    text += digits;
    std::array<unsigned char, 32> hash;
    unsigned size = 0;
    if (!HMAC(EVP_sha256(), key.data(), static_cast<int>(key.size()),
              reinterpret_cast<const unsigned char *>(text.data()), text.size(), hash.data(), &size))
        throw std::runtime_error("no HMAC");
    return {reinterpret_cast<const char *>(hash.data()), size};
}

std::string SignInCode::keyIn(const std::filesystem::path &file)
{
    if (!std::filesystem::exists(file)) {
        const auto bytes = randomBytes<keySize>();
        PrivateFile::replace(file, {reinterpret_cast<const char *>(bytes.data()), bytes.size()});
    }
    std::ifstream stream(file, std::ios::binary);
    std::string key(std::istreambuf_iterator<char>(stream), {});
    if (key.size() < keySize)
        throw std::runtime_error("the key of the sign-in codes in " + file.string() +
                                 " cannot be read or is too short; remove it to have a new one made");
    return key;
}

bool SignInCode::isWellFormed(std::string_view text)
{
    return text.size() == 6 && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}
