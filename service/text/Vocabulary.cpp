#include "service/text/Vocabulary.h"

#include "service/text/CommonWords.h"
#include "service/text/Utf8.h"

#include <algorithm>
#include <utility>

namespace {

constexpr size_t maximumTerms = 1000;
constexpr size_t maximumWords = 4; // of a term
constexpr size_t joinedLength = 6; // shorter terms are not put together from pieces: "in a" is not "Ina"

std::string withoutHyphens(std::string key)
{
    std::erase(key, '-');
    return key;
}

/// The key and, for "sayvane's", what hangs on it.
std::pair<std::string, std::string> stemAndEnding(const Word &word)
{
    if (!word.key.ends_with("'s"))
        return {word.key, {}};
    const bool curly = word.core.ends_with("’s");
    return {word.key.substr(0, word.key.size() - 2), curly ? "’s" : "'s"};
}

} // namespace

Vocabulary::Vocabulary(std::string_view text)
{
    while (!text.empty() && m_terms.size() < maximumTerms) {
        const size_t end = std::min(text.find_first_of(",;\r\n"), text.size());
        const Words words = wordsOf(Utf8::trimmed(text.substr(0, end)));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (words.empty() || words.size() > maximumWords ||
            (words.size() == 1 && CommonWords::contains(words.front().key)))
            continue;
        std::string key;
        for (const Word &word : words)
            key += withoutHyphens(word.key);
        if (key.empty())
            continue;
        m_terms.try_emplace(key, Term{textOf(words), words.size()});
        m_longest = std::max(m_longest, words.size() + 1); // one more piece than it is written with
    }
}

const Vocabulary::Term *Vocabulary::termFor(const std::string &key, size_t words) const
{
    const auto found = m_terms.find(key);
    if (found == m_terms.end())
        return nullptr;
    const bool samePieces = found->second.words == words;
    return samePieces || key.size() >= joinedLength ? &found->second : nullptr;
}

Words Vocabulary::spelled(const Words &words) const
{
    if (m_terms.empty())
        return words;
    Words result;
    result.reserve(words.size());
    for (size_t i = 0; i < words.size();) {
        const Term *best = nullptr;
        size_t length = 1;
        std::string ending;
        std::string key;
        for (size_t n = 1; n <= m_longest && i + n <= words.size(); ++n) {
            if (n > 1 && !words[i + n - 2].runsInto(words[i + n - 1]))
                break;
            const auto [stem, tail] = stemAndEnding(words[i + n - 1]);
            const Term *whole = termFor(key + withoutHyphens(words[i + n - 1].key), n);
            const Term *found = whole ? whole : termFor(key + withoutHyphens(stem), n);
            if (found) {
                best = found;
                length = n;
                ending = whole ? std::string() : tail;
            }
            key += withoutHyphens(words[i + n - 1].key);
        }
        Word word = words[i];
        if (best) {
            word.after = words[i + length - 1].after;
            word.setCore(best->spelling + ending);
            word.isTerm = true;
        }
        result.push_back(std::move(word));
        i += length;
    }
    return result;
}
