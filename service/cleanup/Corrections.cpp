#include "service/cleanup/Corrections.h"

#include "service/cleanup/Phrase.h"
#include "service/text/Calendar.h"
#include "service/text/Numbers.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

enum class Kind { other, day, month, number };

Kind kindOf(const Word &word)
{
    if (Calendar::isDay(word.key))
        return Kind::day;
    if (Calendar::isMonth(word.key))
        return Kind::month;
    return Numbers::isNumber(word.key) ? Kind::number : Kind::other;
}

/// Words from `at` that may only be followed by nothing or a comma.
size_t correctionAt(const Words &words, size_t at)
{
    static constexpr std::array phrases{Phrase{"no", "sorry"},        Phrase{"no", "wait"},
                                        Phrase{"no", "make", "that"}, Phrase{"sorry", "make", "that"},
                                        Phrase{"make", "that"},       Phrase{"i", "mean"},
                                        Phrase{"or", "rather"},       Phrase{"no"}};
    const size_t length = Phrase::lengthAt(words, at, phrases);
    const bool joins = length > 0 && words[at].gap == Word::Gap::space && words[at].before.empty();
    const std::string &after = joins ? words[at + length - 1].after : std::string();
    return joins && (after.empty() || after == ",") ? length : 0;
}

size_t runFrom(const Words &words, size_t at, Kind kind)
{
    size_t length = 0;
    while (at + length < words.size() && kindOf(words[at + length]) == kind &&
           (length == 0 || words[at + length - 1].runsInto(words[at + length])))
        ++length;
    return length;
}

size_t runBefore(const Words &words, Kind kind)
{
    size_t length = 0;
    while (length < words.size() && kindOf(words[words.size() - 1 - length]) == kind &&
           (length == 0 || words[words.size() - 1 - length].runsInto(words[words.size() - length])))
        ++length;
    return length;
}

/// How many of the last words are taken back by the correction of `length` words at `at`.
size_t takenBack(const Words &kept, const Words &words, size_t at, size_t length)
{
    const size_t next = at + length;
    if (kept.empty() || next >= words.size() || (!kept.back().after.empty() && kept.back().after != ","))
        return 0;
    const Kind kind = kindOf(words[next]);
    const bool isNoOne =
        words[next - 1].key == "no" && words[next - 1].after.empty() && words[next].key == "one";
    if (kind == Kind::other || isNoOne || words[next].gap != Word::Gap::space)
        return 0;
    const size_t before = runBefore(kept, kind);
    return before == runFrom(words, next, kind) ? before : 0; // "twenty five no six" is not clear enough
}

} // namespace

Words Corrections::applied(Words words)
{
    Words kept;
    kept.reserve(words.size());
    for (size_t i = 0; i < words.size();) {
        const size_t length = correctionAt(words, i);
        const size_t back = length > 0 ? takenBack(kept, words, i, length) : 0;
        if (back == 0) {
            kept.push_back(std::move(words[i++]));
            continue;
        }
        i += length;
        words[i].gap = kept[kept.size() - back].gap;
        words[i].before.insert(0, kept[kept.size() - back].before);
        kept.resize(kept.size() - back);
    }
    return kept;
}
