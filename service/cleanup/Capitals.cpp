#include "service/cleanup/Capitals.h"

#include "service/cleanup/Phrase.h"
#include "service/text/Calendar.h"

#include <algorithm>
#include <utility>

namespace {

Word capitalised(Word word)
{
    if (!word.core.empty() && word.core[0] >= 'a' && word.core[0] <= 'z')
        word.core[0] = static_cast<char>(word.core[0] - 'a' + 'A');
    return word;
}

/// Letters, apostrophes and hyphens alone; beyond ASCII everything passes for a letter.
bool isPlainWord(const std::string &core)
{
    return std::ranges::all_of(core, [](char c) {
        return (c >= 'a' && c <= 'z') || c == '\'' || c == '-' || static_cast<unsigned char>(c) >= 0x80;
    });
}

bool isSpeaker(const Word &word)
{
    const bool isNumeral = word.before.ends_with('(') || word.after.starts_with(')');
    return !isNumeral && Phrase::isOneOf(word.key, {"i", "i'm", "i'll", "i've", "i'd"});
}

} // namespace

Word Capitals::begun(Word word)
{
    return word.isTerm || !isPlainWord(word.core) ? word : capitalised(std::move(word));
}

Words Capitals::set(Words words)
{
    bool begins = true;
    for (Word &word : words) {
        begins = begins || word.gap == Word::Gap::paragraph;
        if (!word.isTerm && (isSpeaker(word) || Calendar::isUnmistakable(word.key)))
            word = capitalised(std::move(word));
        if (begins)
            word = begun(std::move(word));
        begins = word.endsSentence();
    }
    return words;
}
