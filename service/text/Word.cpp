#include "service/text/Word.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr std::string_view blanks = " \t\r\n\v\f";
constexpr std::array<std::string_view, 10> openers{"\"", "'", "(", "[", "{", "“", "‘", "«", "¿", "¡"};
constexpr std::array<std::string_view, 16> closers{".", ",", ";", ":", "!", "?", "\"", "'",
                                                   ")", "]", "}", "”", "’", "»", "…",  "‚"};
constexpr std::array<std::string_view, 24> abbreviations{
    "mr",     "mrs", "ms", "dr",  "prof", "st",  "vs",  "e.g", "i.e", "eg",   "ie",   "etc",
    "approx", "jr",  "sr", "inc", "ltd",  "a.m", "p.m", "cf",  "al",  "dept", "corp", "co"};

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string keyOf(std::string_view core)
{
    constexpr std::string_view curly = "’";
    std::string key;
    for (size_t i = 0; i < core.size(); ++i) {
        if (core.substr(i, curly.size()) == curly) {
            key += '\'';
            i += curly.size() - 1;
        } else {
            key += lower(core[i]);
        }
    }
    return key;
}

Word wordOf(std::string_view bytes, Word::Gap gap)
{
    Word word;
    word.gap = gap;
    const auto opens = [&bytes](std::string_view mark) { return bytes.starts_with(mark); };
    const auto closes = [&bytes](std::string_view mark) { return bytes.ends_with(mark); };
    for (auto mark = std::ranges::find_if(openers, opens); mark != openers.end();
         mark = std::ranges::find_if(openers, opens)) {
        word.before += *mark;
        bytes.remove_prefix(mark->size());
    }
    const char *const end = bytes.data() + bytes.size();
    for (auto mark = std::ranges::find_if(closers, closes); mark != closers.end();
         mark = std::ranges::find_if(closers, closes))
        bytes.remove_suffix(mark->size());
    word.after.assign(bytes.data() + bytes.size(), end);
    word.setCore(std::string(bytes));
    return word;
}

Word::Gap gapOf(std::string_view blank)
{
    const auto breaks = std::ranges::count(blank, '\n');
    return breaks > 1 ? Word::Gap::paragraph : breaks == 1 ? Word::Gap::line : Word::Gap::space;
}

} // namespace

void Word::setCore(std::string text)
{
    core = std::move(text);
    key = keyOf(core);
}

bool Word::endsSentence() const
{
    if (after.find_first_of("!?") != std::string::npos)
        return true;
    if (after.find('.') == std::string::npos || after.find("..") != std::string::npos)
        return false;
    const bool isInitial = core.size() == 1 && core != "I" && core[0] >= 'A' && core[0] <= 'Z';
    return !isInitial && std::ranges::find(abbreviations, std::string_view(key).substr(key.rfind(' ') + 1)) ==
                             abbreviations.end();
}

bool Word::runsInto(const Word &next) const
{
    return after.empty() && next.before.empty() && next.gap == Gap::space;
}

Words wordsOf(std::string_view text)
{
    Words words;
    for (size_t at = 0; at < text.size();) {
        const size_t start = std::min(text.find_first_not_of(blanks, at), text.size());
        if (start == text.size())
            break;
        const size_t end = std::min(text.find_first_of(blanks, start), text.size());
        const auto gap = words.empty() ? Word::Gap::space : gapOf(text.substr(at, start - at));
        words.push_back(wordOf(text.substr(start, end - start), gap));
        at = end;
    }
    return words;
}

std::string textOf(const Words &words)
{
    std::string text;
    for (const Word &word : words) {
        if (!text.empty())
            text += word.gap == Word::Gap::paragraph ? "\n\n" : word.gap == Word::Gap::line ? "\n" : " ";
        text += word.before + word.core + word.after;
    }
    return text;
}
