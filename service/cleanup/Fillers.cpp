#include "service/cleanup/Fillers.h"

#include "service/cleanup/Phrase.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

bool isSound(const Word &word)
{
    const bool isName =
        word.core.size() > 1 && std::ranges::none_of(word.core, [](char c) { return c >= 'a' && c <= 'z'; });
    return !word.isTerm && !isName &&
           Phrase::isOneOf(word.key, {"um", "umm", "ummm", "uh", "uhh", "uhm", "erm", "er", "hmm", "hm"});
}

/// What must survive of a removed word: the stop that ended its sentence, a quote or bracket.
Words withLegacy(Words kept, const Word &removed)
{
    if (kept.empty())
        return kept;
    std::string marks = removed.after;
    std::erase(marks, ',');
    std::string &after = kept.back().after;
    if (!marks.empty() && after.ends_with(','))
        after.pop_back();
    if (kept.back().endsSentence() && marks.find_first_of(".?!") != std::string::npos)
        return kept;
    if (removed.before.empty() || marks.find_first_of(")]}\"") == std::string::npos)
        after += marks;
    return kept;
}

} // namespace

Words Fillers::soundsRemoved(Words words)
{
    Words kept;
    kept.reserve(words.size());
    Word::Gap gap = Word::Gap::space;
    std::string before;
    for (Word &word : words) {
        gap = std::max(gap, word.gap);
        if (isSound(word)) {
            const bool closesItself = word.after.find_first_of(")]}\"") != std::string::npos;
            before += closesItself ? std::string() : word.before;
            if (gap == Word::Gap::space)
                kept = withLegacy(std::move(kept), word);
            continue;
        }
        word.gap = std::exchange(gap, Word::Gap::space);
        word.before.insert(0, std::exchange(before, {}));
        kept.push_back(std::move(word));
    }
    return kept;
}

Words Fillers::phrasesRemoved(Words words)
{
    static constexpr std::array phrases{Phrase{"you", "know"}, Phrase{"i", "mean"}, Phrase{"sort", "of"},
                                        Phrase{"kind", "of"}, Phrase{"like"}};
    Words kept;
    kept.reserve(words.size());
    for (size_t i = 0; i < words.size();) {
        const size_t length = Phrase::lengthAt(words, i, phrases);
        const bool begins = kept.empty() || kept.back().endsSentence() || words[i].gap != Word::Gap::space;
        const bool setApart = length > 0 && words[i].before.empty() && words[i + length - 1].after == "," &&
                              i + length < words.size() && (begins || kept.back().after == ",");
        if (!setApart) {
            kept.push_back(std::move(words[i++]));
            continue;
        }
        Word &next = words[i + length];
        if (begins) {
            next.gap = std::max(next.gap, words[i].gap);
        } else {
            kept.back().after.clear();
        }
        i += length;
    }
    return kept;
}
