#pragma once

#include "service/speech/SpeechModel.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

struct ps_decoder_s;

/// One speech decoder. Loading takes a quarter of a second and about 100 MB; it is then reused, by one
/// thread at a time.
class Recognizer
{
public:
    /// Throws std::runtime_error when the model cannot be loaded.
    explicit Recognizer(const SpeechModel &model);

    /// The words of one utterance, in lower case without punctuation; empty when none are heard.
    std::string wordsIn(std::span<const std::int16_t> samples);

private:
    std::unique_ptr<ps_decoder_s, void (*)(ps_decoder_s *)> m_decoder;
};
