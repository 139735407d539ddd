#pragma once

#include <string>
#include <string_view>

/// Edits a dictated text by rules: removes hesitations and repetitions, carries out what the speaker
/// told the transcriber to do, sets capitals and stops. It never adds or translates a word, and leaves
/// a text that is already clean as it is.
namespace Editor {

struct Result
{
    std::string text;
    bool skipped = false; ///< the rules do not know the language; only blanks at the ends were removed
};

/// Expects valid UTF-8. `language` is an ISO 639-1 code, or empty when unknown; the time taken grows
/// with the length of the text and no faster.
Result edited(std::string_view text, std::string_view vocabulary, std::string_view language);

} // namespace Editor
