#pragma once

#include "service/text/Word.h"

/// Hesitations that carry no meaning.
namespace Fillers {

/// Without "um", "uh", "erm" and their like; "ER" and "UM" in capitals are names.
Words soundsRemoved(Words words);
/// Without "you know", "I mean", "sort of", "kind of" and "like" where commas set them apart. Without
/// commas they may be meant, and stay.
Words phrasesRemoved(Words words);

} // namespace Fillers
