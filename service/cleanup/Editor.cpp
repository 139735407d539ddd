#include "service/cleanup/Editor.h"

#include "service/cleanup/Capitals.h"
#include "service/cleanup/Corrections.h"
#include "service/cleanup/Fillers.h"
#include "service/cleanup/FullStops.h"
#include "service/cleanup/Repetitions.h"
#include "service/cleanup/Retractions.h"
#include "service/cleanup/SpokenMarks.h"
#include "service/protocol/Language.h"
#include "service/text/CommonWords.h"
#include "service/text/Utf8.h"
#include "service/text/Vocabulary.h"

Editor::Result Editor::edited(std::string_view text, std::string_view vocabulary, std::string_view language)
{
    const std::string_view trimmed = Utf8::trimmed(text);
    if (!Language::mayBeEnglish(language) || Utf8::isMostlyNotLatin(trimmed))
        return {std::string(trimmed), true};
    Words words = wordsOf(trimmed);
    if (!CommonWords::lookEnglish(words))
        return {std::string(trimmed), true};
    words = Vocabulary(vocabulary).spelled(words);
    words = Fillers::soundsRemoved(std::move(words)); // first: they interrupt every other phrase
    words = Corrections::applied(std::move(words));
    words = Fillers::phrasesRemoved(std::move(words));
    words = Retractions::carriedOut(std::move(words));
    words = Repetitions::removed(std::move(words));
    words = SpokenMarks::carriedOut(std::move(words));
    words = Capitals::set(std::move(words));
    return {textOf(FullStops::endingText(std::move(words))), false};
}
