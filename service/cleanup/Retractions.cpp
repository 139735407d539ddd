#include "service/cleanup/Retractions.h"

#include "service/cleanup/Phrase.h"
#include "service/cleanup/Retraction.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace {

constexpr auto isOneOf = &Phrase::isOneOf;
using Text = std::span<const Word>;

constexpr size_t reach = 40; // words; no instruction takes back more

/// Without the little words that lead up to the instruction: "no wait, scratch that".
Text withoutLeadIn(Text text)
{
    for (int i = 0; i < 2 && !text.empty(); ++i) {
        const bool joins = text.back().after.empty() || text.back().after == ",";
        if (joins && isOneOf(text.back().key, {"actually", "no", "wait", "oh", "okay", "ok", "sorry"}))
            text = text.first(text.size() - 1);
    }
    return text;
}

/// The beginning of the sentence that the last word belongs to.
size_t sentenceStart(Text text)
{
    size_t start = text.size() - 1;
    while (start > 0 && text.size() - start < reach && text[start].gap == Word::Gap::space &&
           !text[start - 1].endsSentence())
        --start;
    return start;
}

/// The beginning of its last clause: after a comma, or with a conjunction where nothing is punctuated.
size_t clauseStart(Text text)
{
    const size_t sentence = sentenceStart(text);
    if (text.back().endsSentence())
        return sentence;
    size_t start = text.size() - 1;
    while (start > sentence && !text[start - 1].after.ends_with(',') &&
           !isOneOf(text[start].key, {"and", "but", "so", "because", "then"}))
        --start;
    return start;
}

/// Where the words that follow the instruction were said before: the sentence is begun anew from there.
std::optional<size_t> startOfRestart(Text text, Text following)
{
    if (following.empty())
        return {};
    const std::string &next = following[0].key;
    const bool tellsLittle = isOneOf(
        next, {"the", "a", "an", "of", "to", "in", "on", "at", "for", "with", "by", "and", "or", "but"});
    std::optional<size_t> single;
    const size_t sentence = sentenceStart(text);
    for (size_t i = text.size(); i-- > sentence;) {
        if (text[i].key != next)
            continue;
        if (following.size() > 1 && i + 1 < text.size() && text[i + 1].key == following[1].key)
            return i;
        if (!single && !tellsLittle)
            single = i;
    }
    return single;
}

/// How many words remain before the instruction once it is carried out.
size_t remaining(Text text, Retraction::Scope scope, Text following)
{
    text = withoutLeadIn(text);
    if (text.empty() || scope == Retraction::Scope::everything)
        return 0;
    if (scope == Retraction::Scope::word)
        return text.size() - 1;
    if (scope == Retraction::Scope::sentence)
        return sentenceStart(text);
    const auto restart = startOfRestart(text, following);
    return restart ? *restart : clauseStart(text);
}

} // namespace

Words Retractions::carriedOut(Words words)
{
    Words kept;
    kept.reserve(words.size());
    bool retracted = false;
    Word::Gap gap = Word::Gap::space;
    for (size_t i = 0; i < words.size();) {
        const auto instruction = Retraction::at(words, i, kept, retracted);
        if (!instruction) {
            words[i].gap = kept.empty() ? Word::Gap::space : std::max(words[i].gap, gap);
            gap = Word::Gap::space;
            kept.push_back(std::move(words[i++]));
            continue;
        }
        retracted = true;
        i += instruction->words;
        const size_t count = remaining(kept, instruction->scope, Text(words).subspan(i));
        if (count < kept.size())
            gap = std::max(gap, kept[count].gap);
        kept.resize(count);
    }
    return kept;
}
