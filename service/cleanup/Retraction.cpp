#include "service/cleanup/Retraction.h"

#include "service/cleanup/Phrase.h"

#include <algorithm>
#include <array>

namespace {

constexpr auto isOneOf = &Phrase::isOneOf;
using Scope = Retraction::Scope;

/// Whether the word before makes the phrase part of the message: "you could scratch that".
bool addressesReader(const Word &word)
{
    return word.after.empty() &&
           isOneOf(word.key,
                   {"to",      "please",  "should", "could", "can",   "will",  "would",  "must",  "may",
                    "might",   "shall",   "you",    "i",     "we",    "they",  "he",     "she",   "it",
                    "who",     "let's",   "not",    "never", "don't", "can't", "cannot", "won't", "didn't",
                    "doesn't", "just",    "and",    "or",    "then",  "a",     "the",    "i'll",  "we'll",
                    "you'll",  "they'll", "i'd",    "we'd",  "help",  "if"});
}

/// Whether a new clause begins with the word, rather than the thing that "that" points at.
bool beginsClause(const Word &word)
{
    return isOneOf(word.key,
                   {"the",   "a",     "an",       "i",       "we",   "you",   "he",   "she",   "it",
                    "they",  "this",  "these",    "those",   "my",   "our",   "your", "his",   "her",
                    "their", "there", "what",     "who",     "when", "where", "why",  "how",   "if",
                    "so",    "but",   "actually", "instead", "make", "say",   "tell", "ask",   "please",
                    "let's", "let",   "no",       "it's",    "i'm",  "we're", "i'll", "we'll", "i've",
                    "hi",    "hello", "dear",     "okay",    "ok",   "sorry", "new"});
}

bool isCutOff(std::span<const Word> words, size_t next)
{
    return next >= words.size() || !words[next - 1].runsInto(words[next]);
}

/// Whether the speaker goes back to a word of the sentence that is being taken back.
bool beginsAnew(const Words &before, const Word &next)
{
    constexpr size_t reach = 20;
    for (size_t back = 1; back <= std::min(reach, before.size()); ++back) {
        const size_t i = before.size() - back;
        if (before[i].key == next.key)
            return true;
        if (i + 1 < before.size() && before[i].endsSentence())
            return false;
    }
    return false;
}

/// "scrap that last bit", "delete the last sentence".
std::optional<Retraction> withObject(std::span<const Word> words, size_t at)
{
    const bool verb = isOneOf(words[at].key, {"scratch", "scrap", "delete", "strike", "remove"});
    if (!verb ||
        !(Phrase{"that", "last"}.standsAt(words, at + 1) || Phrase{"the", "last"}.standsAt(words, at + 1)) ||
        at + 3 >= words.size() || !words[at].runsInto(words[at + 1]) ||
        !words[at + 2].runsInto(words[at + 3]))
        return {};
    const std::string &object = words[at + 3].key;
    if (object == "word")
        return Retraction{4, Scope::word};
    if (object == "sentence")
        return Retraction{4, Scope::sentence};
    if (isOneOf(object, {"bit", "part", "line", "phrase"}))
        return Retraction{4, Scope::clause};
    return {};
}

/// "scratch that", "actually don't write that": what "that" is has to be the text before.
std::optional<Retraction> withoutObject(std::span<const Word> words, size_t at, const Words &before)
{
    if (Phrase{"scratch", "that"}.standsAt(words, at)) {
        const bool literal =
            !isCutOff(words, at + 2) &&
            isOneOf(words[at + 2].key, {"itch", "off", "from", "idea", "surface", "card", "with"});
        return literal ? std::nullopt : std::optional(Retraction{2, Scope::clause});
    }
    static constexpr std::array phrases{Phrase{"scrap", "that"},
                                        Phrase{"delete", "that"},
                                        Phrase{"strike", "that"},
                                        Phrase{"don't", "write", "that"},
                                        Phrase{"do", "not", "write", "that"},
                                        Phrase{"ignore", "that"}};
    const size_t length = Phrase::lengthAt(words, at, phrases);
    if (length == 0)
        return {};
    const size_t next = at + length;
    const bool plain = isCutOff(words, next) || beginsAnew(before, words[next]) ||
                       (beginsClause(words[next]) && words[at].key != "ignore");
    return plain ? std::optional(Retraction{length, Scope::clause}) : std::nullopt;
}

/// "start again": with a pause before, or where the text plainly begins anew.
std::optional<Retraction> beginning(std::span<const Word> words, size_t at, const Words &before)
{
    static constexpr std::array phrases{Phrase{"let", "me", "start", "again"},
                                        Phrase{"let", "me", "start", "over"}, Phrase{"start", "again"},
                                        Phrase{"start", "over"}};
    const size_t length = Phrase::lengthAt(words, at, phrases);
    const size_t next = at + length;
    if (length == 0 || next >= words.size())
        return {};
    const bool announced =
        length == 4 || !before.back().after.empty() ||
        isOneOf(before.back().key, {"okay", "ok", "no", "sorry", "right", "wait", "actually", "oh"});
    const bool followed =
        isCutOff(words, next) || beginsClause(words[next]) || words[next].key == before.front().key;
    const bool reported =
        before.back().after.empty() && before.back().key.ends_with('s'); // "lessons start again"
    return announced || (followed && !reported) ? std::optional(Retraction{length, Scope::everything})
                                                : std::nullopt;
}

} // namespace

std::optional<Retraction> Retraction::at(std::span<const Word> words, size_t at, const Words &before,
                                         bool retracted)
{
    if (!words[at].before.empty() || (before.empty() && !retracted))
        return {};
    if (!before.empty() && words[at].gap == Word::Gap::space && addressesReader(before.back()))
        return {};
    if (const auto found = withObject(words, at))
        return found;
    if (const auto found = withoutObject(words, at, before))
        return found;
    return before.empty() ? std::nullopt : beginning(words, at, before);
}
