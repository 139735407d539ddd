#pragma once

#include "service/dictation/Transcriber.h"
#include "service/speech/SpeechEngine.h"

/// Hears English with the decoders of this program.
class EmbeddedTranscriber final : public Transcriber
{
public:
    explicit EmbeddedTranscriber(SpeechEngine &engine) : m_engine(engine) {}

    const std::string &model() const override { return m_model; }
    std::string onlyLanguage() const override { return "english"; }
    int places() const override { return 6; }
    std::expected<std::string, Refusal> transcribe(Upload upload,
                                                   const std::function<bool()> &isUnwanted) override;

private:
    SpeechEngine &m_engine;
    const std::string m_model = "pocketsphinx-en-us";
};
