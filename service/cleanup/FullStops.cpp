#include "service/cleanup/FullStops.h"

#include "service/cleanup/Phrase.h"

#include <algorithm>
#include <span>

namespace {

bool isLetterOrDigit(const std::string &core)
{
    const char c = core.empty() ? ' ' : core.back();
    const bool ascii = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '%';
    const bool latin = core.size() > 1 && static_cast<unsigned char>(core[core.size() - 2]) >= 0xc3 &&
                       static_cast<unsigned char>(core[core.size() - 2]) <= 0xc9;
    return ascii || latin;
}

bool wantsStop(const Word &word)
{
    const bool open = word.after.find_first_not_of(",\"')]}") == std::string::npos;
    return open && isLetterOrDigit(word.core) && word.core.find_first_of("/@#\\_") == std::string::npos;
}

/// The words since the last break of at least this kind.
std::span<const Word> lastPart(const Words &words, Word::Gap gap)
{
    size_t first = words.size() - 1;
    while (first > 0 && words[first].gap < gap)
        --first;
    return std::span(words).subspan(first);
}

bool isListItem(std::span<const Word> line)
{
    const std::string &core = line.front().core;
    return core == "-" || core == "*" || core == "•" ||
           (line.front().after == "." && core.find_first_not_of("0123456789") == std::string::npos);
}

bool isGreeting(std::span<const Word> paragraph)
{
    return paragraph.size() <= 4 && Phrase::isOneOf(paragraph.front().key, {"hi", "hello", "hey", "dear"});
}

Words ended(Words words, char mark)
{
    std::string &after = words.back().after;
    if (after.ends_with(','))
        after.pop_back();
    after += mark;
    return words;
}

} // namespace

Words FullStops::endingText(Words words)
{
    if (words.empty() || !wantsStop(words.back()) || isListItem(lastPart(words, Word::Gap::line)))
        return words;
    return ended(std::move(words), '.');
}

Words FullStops::endingParagraph(Words words)
{
    if (words.empty() || !wantsStop(words.back()))
        return words;
    const bool greeting = isGreeting(lastPart(words, Word::Gap::paragraph));
    return ended(std::move(words), greeting ? ',' : '.');
}
