#pragma once

#include "service/text/Word.h"

#include <cstddef>
#include <initializer_list>
#include <span>
#include <string_view>

/// Looking for fixed phrases in a text.
namespace Phrase {

using Keys = std::initializer_list<std::string_view>;

/// Whether the keys follow each other at `at`, with neither punctuation nor a break between them.
bool standsAt(std::span<const Word> words, size_t at, Keys keys);
/// The number of words of the first of the phrases that stands there; 0 when none does.
size_t lengthAt(std::span<const Word> words, size_t at, std::span<const Keys> phrases);
/// Whether the key is one of them.
bool isOneOf(std::string_view key, Keys keys);

} // namespace Phrase
