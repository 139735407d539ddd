#include "service/dictation/EmbeddedTranscriber.h"

#include "service/cleanup/Capitals.h"
#include "service/cleanup/FullStops.h"
#include "service/protocol/Language.h"
#include "service/text/Vocabulary.h"

namespace {

/// Clients wait 180 s for the whole of a request. A recording that finds others waiting and would take
/// longer is refused at once; one that finds none is tried at any pace.
constexpr Pace::Seconds longestWait{150};

/// The terms of a prompt such as "Names that may occur: Tobin, Maren".
std::string_view termsIn(std::string_view prompt)
{
    const size_t end = prompt.find_first_of(":,;\r\n");
    return end != std::string_view::npos && prompt[end] == ':' ? prompt.substr(end + 1) : prompt;
}

/// The recogniser's words as a sentence, the user's terms in their own spelling.
std::string sentence(const std::string &words, std::string_view prompt)
{
    const Vocabulary vocabulary(termsIn(prompt));
    return textOf(FullStops::endingText(Capitals::set(vocabulary.spelled(wordsOf(words)))));
}

} // namespace

std::expected<std::string, Refusal> EmbeddedTranscriber::transcribe(Upload upload,
                                                                    const std::function<bool()> &isUnwanted)
{
    if (!Language::mayBeEnglish(upload.language)) {
        return std::unexpected(
            Refusal{400, "unsupported_language",
                    "This service understands English only. Choose English or automatic as the language."});
    }
    const auto recording = Recording::fromWav(upload.wav);
    if (!recording)
        return std::unexpected(Refusal::badRequest(recording.error()));
    if (const auto expected = m_engine.expected(Pace::Seconds(recording->seconds())); expected > longestWait)
        return std::unexpected(Refusal::busy(expected - longestWait));
    upload.wav = {}; // gives the memory back
    const auto words = m_engine.transcribe(*recording, isUnwanted);
    if (!words)
        return std::unexpected(Refusal::stopping());
    return sentence(*words, upload.prompt);
}
