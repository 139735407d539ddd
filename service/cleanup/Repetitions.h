#pragma once

#include "service/text/Word.h"

/// Words and short phrases said twice in a row by mistake.
namespace Repetitions {

/// Keeps what is repeated on purpose: numbers, "very very", "had had", single letters, the user's terms.
Words removed(Words words);

} // namespace Repetitions
