#include "service/text/Utf8.h"

#include <unigbrk.h>

#include <algorithm>
#include <cstdint>

namespace {

struct CodePoint
{
    std::uint32_t value = 0;
    size_t length = 0; // bytes; 0 when malformed
};

CodePoint firstOf(std::string_view bytes)
{
    const auto at = [bytes](size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned char lead = at(0);
    if (lead < 0x80)
        return {lead, 1};
    const size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
    if (lead < 0xc2 || lead > 0xf4 || bytes.size() < length)
        return {};
    std::uint32_t value = lead & (0xffu >> (length + 1));
    for (size_t i = 1; i < length; ++i) {
        if ((at(i) & 0xc0) != 0x80)
            return {};
        value = value << 6 | (at(i) & 0x3fu);
    }
    const bool overlong = (length == 3 && value < 0x800) || (length == 4 && value < 0x10000);
    const bool surrogate = value >= 0xd800 && value <= 0xdfff;
    if (overlong || surrogate || value > 0x10ffff)
        return {};
    return {value, length};
}

bool isLatinLetter(std::uint32_t c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           (c >= 0xc0 && c <= 0x24f && c != 0xd7 && c != 0xf7);
}

/// Blocks of letters; punctuation, symbols and emoji lie between them.
bool isOtherLetter(std::uint32_t c)
{
    return (c >= 0x370 && c < 0x2000) || (c >= 0x2c00 && c < 0xfe00) || (c >= 0xfe70 && c < 0xfff0) ||
           (c >= 0x10000 && c < 0x1f000) || (c >= 0x20000 && c < 0xe0000);
}

bool isControl(std::uint32_t c)
{
    const bool turnsDirection = c == 0x61c || c == 0x200e || c == 0x200f || (c >= 0x202a && c <= 0x202e) ||
                                (c >= 0x2066 && c <= 0x2069);
    return c < 0x20 || (c >= 0x7f && c < 0xa0) || c == 0x2028 || c == 0x2029 || turnsDirection;
}

} // namespace

std::string Utf8::valid(std::string_view bytes)
{
    std::string text;
    while (!bytes.empty()) {
        const size_t length = firstOf(bytes).length;
        text += bytes.substr(0, length);
        bytes.remove_prefix(std::max<size_t>(length, 1));
    }
    return text;
}

bool Utf8::isValid(std::string_view bytes)
{
    while (!bytes.empty()) {
        const CodePoint next = firstOf(bytes);
        if (next.length == 0)
            return false;
        bytes.remove_prefix(next.length);
    }
    return true;
}

std::string_view Utf8::trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n\v\f";
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string_view Utf8::prefix(std::string_view text, size_t count)
{
    size_t size = 0;
    while (count-- > 0 && size < text.size()) {
        const size_t length = firstOf(text.substr(size)).length;
        size += length ? length : 1;
    }
    return text.substr(0, size);
}

size_t Utf8::characters(std::string_view text)
{
    std::string starts(text.size(), '\0');
    u8_grapheme_breaks(reinterpret_cast<const std::uint8_t *>(text.data()), text.size(), starts.data());
    return static_cast<size_t>(std::ranges::count(starts, '\1'));
}

std::string Utf8::withoutControls(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const CodePoint next = firstOf(text);
        const size_t length = next.length ? next.length : 1;
        if (!isControl(next.value))
            result += text.substr(0, length);
        text.remove_prefix(length);
    }
    return result;
}

bool Utf8::isMostlyNotLatin(std::string_view text)
{
    size_t latin = 0;
    size_t other = 0;
    while (!text.empty()) {
        const CodePoint next = firstOf(text);
        latin += isLatinLetter(next.value) ? 1 : 0;
        other += isOtherLetter(next.value) ? 1 : 0;
        text.remove_prefix(next.length ? next.length : 1);
    }
    return other > latin;
}
