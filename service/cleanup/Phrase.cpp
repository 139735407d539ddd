#include "service/cleanup/Phrase.h"

#include <algorithm>

bool Phrase::standsAt(std::span<const Word> words, size_t at) const
{
    if (at + m_size > words.size())
        return false;
    for (size_t i = 0; i < m_size; ++i) {
        const Word &word = words[at + i];
        if (word.isTerm || word.key != m_keys[i] || (i > 0 && !words[at + i - 1].runsInto(word)))
            return false;
    }
    return true;
}

size_t Phrase::lengthAt(std::span<const Word> words, size_t at, std::span<const Phrase> phrases)
{
    const auto found =
        std::ranges::find_if(phrases, [&](const Phrase &phrase) { return phrase.standsAt(words, at); });
    return found == phrases.end() ? 0 : found->size();
}

bool Phrase::isOneOf(std::string_view key, std::initializer_list<std::string_view> keys)
{
    return std::ranges::find(keys, key) != keys.end();
}
