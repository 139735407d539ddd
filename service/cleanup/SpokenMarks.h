#pragma once

#include "service/text/Word.h"

/// Layout and punctuation that the speaker names: "new paragraph", "new line", "comma", "full stop",
/// "question mark", "exclamation mark".
namespace SpokenMarks {

/// Carries them out and removes the words, unless they are content, as in "a new line of shoes" or
/// "the Oxford comma".
Words carriedOut(Words words);

} // namespace SpokenMarks
