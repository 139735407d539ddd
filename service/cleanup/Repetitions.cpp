#include "service/cleanup/Repetitions.h"

#include "service/cleanup/Phrase.h"
#include "service/text/CommonWords.h"
#include "service/text/Numbers.h"

#include <algorithm>
#include <span>
#include <utility>

namespace {

constexpr size_t longestPhrase = 4;

bool isOftenDoubled(const std::string &key)
{
    return Phrase::isOneOf(key, {"had",    "that",  "very",  "really", "so",   "no",   "yes",   "bye",
                                 "ha",     "knock", "far",   "much",   "many", "well", "there", "now",
                                 "night",  "more",  "long",  "big",    "go",   "her",  "is",    "do",
                                 "please", "hear",  "again", "too",    "blah"});
}

bool isLetter(const std::string &key)
{
    return key.size() == 1 && key != "i" && key != "a";
}

/// Neither white space nor a word: emoji, dashes, ASCII marks.
bool hasLetters(const std::string &key)
{
    return std::ranges::any_of(key, [](char c) { return c >= 'a' && c <= 'z'; });
}

bool mayGo(std::span<const Word> phrase)
{
    const bool unsure = std::ranges::any_of(phrase, [](const Word &word) {
        return word.isTerm || Numbers::isNumber(word.key) || isLetter(word.key) || !hasLetters(word.key);
    });
    if (unsure)
        return false;
    if (phrase.size() == 1)
        return !isOftenDoubled(phrase[0].key);
    return std::ranges::any_of(phrase, [](const Word &word) { return CommonWords::contains(word.key); });
}

/// Whether the last `n` words say what the `n` before them said.
bool repeats(const Words &words, size_t n)
{
    if (words.size() < 2 * n)
        return false;
    const auto second = std::span(words).last(n);
    const auto first = std::span(words).subspan(words.size() - 2 * n, n);
    for (size_t i = 0; i < n; ++i) {
        if (first[i].key != second[i].key || (i > 0 && !second[i - 1].runsInto(second[i])) ||
            (i > 0 && !first[i - 1].runsInto(first[i])))
            return false;
    }
    const std::string &between = first[n - 1].after;
    const bool stutter = between.empty() || (between == "," && CommonWords::contains(first[n - 1].key));
    return stutter && second[0].before.empty() && second[0].gap == Word::Gap::space && mayGo(second);
}

} // namespace

Words Repetitions::removed(Words words)
{
    Words kept;
    kept.reserve(words.size());
    for (Word &word : words) {
        kept.push_back(std::move(word));
        for (size_t n = 1; n <= longestPhrase; ++n) {
            if (!repeats(kept, n))
                continue;
            std::string after = std::move(kept.back().after);
            kept.resize(kept.size() - n);
            kept.back().after = std::move(after);
            break;
        }
    }
    return kept;
}
