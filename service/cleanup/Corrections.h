#pragma once

#include "service/text/Word.h"

/// "Tuesday, no, Wednesday": of two days, months or numbers with a correction between them, the speaker
/// settled on the second.
namespace Corrections {

Words applied(Words words);

} // namespace Corrections
