#pragma once

#include "service/text/Word.h"

#include <array>
#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <span>
#include <string_view>

/// A fixed phrase of up to four words, to be looked for in a text.
class Phrase
{
public:
    template <typename... Keys>
    requires(std::convertible_to<const Keys &, std::string_view> &&...) constexpr Phrase(const Keys &...keys)
        : m_keys{keys...},
          m_size(sizeof...(keys))
    {
    }

    constexpr size_t size() const { return m_size; }

    /// Whether the words follow each other at `at`, with neither punctuation nor a break between them.
    bool standsAt(std::span<const Word> words, size_t at) const;

    /// The number of words of the first of the phrases that stands there; 0 when none does.
    static size_t lengthAt(std::span<const Word> words, size_t at, std::span<const Phrase> phrases);
    /// Whether the key is one of them.
    static bool isOneOf(std::string_view key, std::initializer_list<std::string_view> keys);

private:
    std::array<std::string_view, 4> m_keys;
    size_t m_size;
};
