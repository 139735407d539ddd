#pragma once

#include "service/text/Word.h"

#include <string_view>

/// The small words that English sentences are held together with.
namespace CommonWords {

/// Expects a word's key.
bool contains(std::string_view key);

/// Whether the words look like English. Few words are given the benefit of the doubt.
bool lookEnglish(const Words &words);

} // namespace CommonWords
