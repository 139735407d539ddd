#pragma once

#include "service/text/Word.h"

#include <cstddef>
#include <optional>
#include <span>

/// One instruction to the transcriber, found in a text.
struct Retraction
{
    enum class Scope { word, clause, sentence, everything };

    size_t words = 0; ///< how many the instruction has
    Scope scope = Scope::clause;

    /// The instruction that begins at `at`. `before` is the text that precedes it; where there is none
    /// and nothing `retracted` yet, there is nothing to take back and the words are content.
    static std::optional<Retraction> at(std::span<const Word> words, size_t at, const Words &before,
                                        bool retracted);
};
