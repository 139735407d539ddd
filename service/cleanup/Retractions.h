#pragma once

#include "service/text/Word.h"

/// What the speaker tells the transcriber to take back: "scratch that", "delete the last sentence",
/// "actually don't write that", "start again".
///
/// The same words said to the reader stay: "please don't say that to the client", "tell them to ignore
/// that email". When in doubt they are taken for content.
namespace Retractions {

/// Removes each instruction and what it refers to: back to where the sentence is begun anew, or else
/// its last clause. "Start again" keeps only what follows.
Words carriedOut(Words words);

} // namespace Retractions
