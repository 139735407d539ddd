#pragma once

#include "service/text/Word.h"

/// The stop that a dictated text lacks at its end.
namespace FullStops {

/// Ends the last sentence unless something ends it already. An address, an emoji, a list or another
/// script gets none.
Words endingText(Words words);
/// The same before a spoken paragraph break; a greeting that stands alone gets a comma.
Words endingParagraph(Words words);

} // namespace FullStops
