#include "service/text/CommonWords.h"

#include <algorithm>
#include <string>
#include <unordered_set>

namespace {

const std::unordered_set<std::string_view> words{
    "a",     "an",    "the",   "this",    "that",   "these",   "those", "i",     "you",     "he",
    "she",   "it",    "we",    "they",    "me",     "him",     "her",   "us",    "them",    "my",
    "your",  "his",   "its",   "our",     "their",  "i'm",     "i'll",  "i've",  "i'd",     "you're",
    "it's",  "we're", "we'll", "they're", "that's", "there's", "let's", "let",   "is",      "are",
    "was",   "were",  "am",    "be",      "been",   "have",    "has",   "do",    "does",    "did",
    "can",   "could", "will",  "would",   "shall",  "should",  "must",  "may",   "might",   "not",
    "don't", "to",    "of",    "in",      "on",     "at",      "for",   "with",  "from",    "by",
    "as",    "into",  "and",   "or",      "but",    "if",      "when",  "while", "because", "what",
    "who",   "where", "why",   "how",     "which",  "there",   "just",  "about", "please"};

/// Those that no neighbouring language shares.
const std::unordered_set<std::string_view> onlyEnglish{
    "the",  "and",    "that", "this",  "you",  "it",    "it's",  "to",   "with",   "they", "are",  "be",
    "my",   "your",   "our",  "their", "i'm",  "i'll",  "don't", "not",  "please", "but",  "from", "would",
    "will", "should", "she",  "very",  "what", "there", "how",   "when", "where",  "about"};

} // namespace

bool CommonWords::contains(std::string_view key)
{
    return words.contains(key);
}

bool CommonWords::lookEnglish(const Words &text)
{
    constexpr size_t fewWords = 8;
    const auto found =
        std::ranges::count_if(text, [](const Word &word) { return onlyEnglish.contains(word.key); });
    return text.size() < fewWords || static_cast<size_t>(found) * 12 >= text.size();
}
