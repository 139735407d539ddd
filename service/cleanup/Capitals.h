#pragma once

#include "service/text/Word.h"

/// Capital letters where English has them.
namespace Capitals {

/// At the beginning of sentences, in "I", in the names of days and months. A word with a spelling of
/// its own ("iPhone", "example.com") keeps it.
Words set(Words words);
/// The word as it begins a sentence.
Word begun(Word word);

} // namespace Capitals
