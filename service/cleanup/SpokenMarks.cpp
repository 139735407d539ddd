#include "service/cleanup/SpokenMarks.h"

#include "service/cleanup/Capitals.h"
#include "service/cleanup/FullStops.h"
#include "service/cleanup/Phrase.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace {

struct Command
{
    Phrase phrase;
    Word::Gap gap;         // for layout
    std::string_view mark; // for punctuation
};

/// Words that a mark's name can hang on: "the comma", "another new line", "the Oxford comma".
bool leadsTo(const Word &word)
{
    return word.after.empty() &&
           Phrase::isOneOf(word.key,
                           {"a",    "an",      "the",     "our",    "my",    "your",  "their", "its",
                            "each", "every",   "another", "any",    "whole", "brand", "some",  "no",
                            "with", "without", "oxford",  "serial", "big",   "huge"});
}

const Command *commandAt(const Words &words, size_t at)
{
    static constexpr std::array commands{Command{{"new", "paragraph"}, Word::Gap::paragraph, {}},
                                         Command{{"new", "line"}, Word::Gap::line, {}},
                                         Command{{"full", "stop"}, Word::Gap::space, "."},
                                         Command{{"question", "mark"}, Word::Gap::space, "?"},
                                         Command{{"exclamation", "mark"}, Word::Gap::space, "!"},
                                         Command{{"exclamation", "point"}, Word::Gap::space, "!"},
                                         Command{{"comma"}, Word::Gap::space, ","}};
    const auto stands = [&](const Command &command) { return command.phrase.standsAt(words, at); };
    const auto found = std::ranges::find_if(commands, stands);
    return found == commands.end() ? nullptr : &*found;
}

/// Whether the named mark is what the sentence is about.
bool isContent(const Words &kept, const Words &words, size_t at, const Command &command)
{
    if (!kept.empty() && words[at].gap == Word::Gap::space && leadsTo(kept.back()))
        return true;
    const size_t next = at + command.phrase.size();
    return next < words.size() && words[next - 1].runsInto(words[next]) &&
           Phrase::isOneOf(words[next].key, {"of", "manager", "managers", "item", "items", "break", "breaks",
                                             "character", "characters", "separated", "key", "and", "or"});
}

Words withMark(Words words, std::string_view mark)
{
    if (words.empty())
        return words;
    std::string &after = words.back().after;
    if (mark != "," && after.ends_with(','))
        after.pop_back();
    if (after.find_first_of(".,?!") == std::string::npos)
        after += mark;
    return words;
}

} // namespace

Words SpokenMarks::carriedOut(Words words)
{
    Words kept;
    kept.reserve(words.size());
    Word::Gap gap = Word::Gap::space;
    for (size_t i = 0; i < words.size();) {
        const Command *command = commandAt(words, i);
        if (!command || isContent(kept, words, i, *command)) {
            Word word = std::move(words[i++]);
            if (gap != Word::Gap::space)
                word = Capitals::begun(std::move(word));
            word.gap =
                kept.empty() ? Word::Gap::space : std::max(word.gap, std::exchange(gap, Word::Gap::space));
            kept.push_back(std::move(word));
            continue;
        }
        gap = std::max({gap, words[i].gap, command->gap});
        if (!command->mark.empty()) {
            kept = withMark(std::move(kept), command->mark);
        } else if (command->gap == Word::Gap::paragraph) {
            kept = FullStops::endingParagraph(std::move(kept));
        }
        i += command->phrase.size();
    }
    return kept;
}
