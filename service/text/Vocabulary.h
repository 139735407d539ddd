#pragma once

#include "service/text/Word.h"

#include <string>
#include <string_view>
#include <unordered_map>

/// The user's own terms, with the spelling that they are to have.
class Vocabulary
{
public:
    /// Terms stand between commas, semicolons and line breaks.
    explicit Vocabulary(std::string_view text);

    /// The words with every term in its own spelling, whatever case, hyphens or blanks it was written
    /// with: "say vane" becomes "Sayvane". A term that is also an everyday word ("IT") is left alone.
    Words spelled(const Words &words) const;

private:
    struct Term
    {
        std::string spelling;
        size_t words = 1;
    };

    const Term *termFor(const std::string &key, size_t words) const;

    std::unordered_map<std::string, Term> m_terms; // by key without blanks and hyphens
    size_t m_longest = 0;                          // words
};
