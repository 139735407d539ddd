#pragma once

#include <string>
#include <string_view>
#include <vector>

/// One word of a text with the punctuation around it.
struct Word
{
    /// What separates a word from the one before it.
    enum class Gap { space, line, paragraph };

    Gap gap = Gap::space;
    std::string before; ///< opening quotes and brackets
    std::string core;
    std::string after;   ///< commas, stops, closing quotes and brackets
    std::string key;     ///< the core in lower case (ASCII letters only), its apostrophes straight
    bool isTerm = false; ///< from the user's vocabulary: spelled as it stands

    void setCore(std::string text);
    /// Whether a sentence ends with this word; a stop after an abbreviation or an initial ends none.
    bool endsSentence() const;
    /// Whether another word can follow in the same phrase.
    bool runsInto(const Word &next) const;
};

using Words = std::vector<Word>;

/// The words of a text; runs of blanks count as one, line breaks are kept as one or two.
Words wordsOf(std::string_view text);
/// The text again.
std::string textOf(const Words &words);
