#include "service/accounts/EmailAddress.h"

#include "service/text/Utf8.h"

#include <algorithm>

std::optional<std::string> EmailAddress::normalised(std::string_view text)
{
    std::string address(Utf8::trimmed(text));
    std::ranges::transform(address, address.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    const size_t at = address.find('@');
    if (address.size() >= 255 || at == 0 || at == std::string::npos ||
        address.find('@', at + 1) != std::string::npos)
        return {};
    const auto domain = std::string_view(address).substr(at + 1);
    const bool dotted =
        domain.find('.') != std::string_view::npos && !domain.starts_with('.') && !domain.ends_with('.');
    static constexpr std::string_view specials = "()<>[]:;,\\\"";
    const bool plain = std::ranges::all_of(
        address, [](char c) { return c > ' ' && c < 0x7f && specials.find(c) == std::string_view::npos; });
    return dotted && plain ? std::optional(address) : std::nullopt;
}
