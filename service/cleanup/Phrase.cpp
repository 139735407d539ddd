#include "service/cleanup/Phrase.h"

#include <algorithm>

bool Phrase::standsAt(std::span<const Word> words, size_t at, Keys keys)
{
    if (at + keys.size() > words.size())
        return false;
    for (size_t i = 0; i < keys.size(); ++i) {
        const Word &word = words[at + i];
        if (word.isTerm || word.key != keys.begin()[i] || (i > 0 && !words[at + i - 1].runsInto(word)))
            return false;
    }
    return true;
}

size_t Phrase::lengthAt(std::span<const Word> words, size_t at, std::span<const Keys> phrases)
{
    for (const Keys &phrase : phrases) {
        if (standsAt(words, at, phrase))
            return phrase.size();
    }
    return 0;
}

bool Phrase::isOneOf(std::string_view key, Keys keys)
{
    return std::ranges::find(keys, key) != keys.end();
}
