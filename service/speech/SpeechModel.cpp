#include "service/speech/SpeechModel.h"

#include <stdexcept>

SpeechModel SpeechModel::in(const std::filesystem::path &folder)
{
    const auto english = folder / "en-us";
    SpeechModel model{english / "en-us", english / "en-us.lm.bin", english / "cmudict-en-us.dict"};
    for (const auto &part : {model.acoustic, model.language, model.dictionary}) {
        if (!std::filesystem::exists(part))
            throw std::runtime_error("there is no speech model at " + part.string());
    }
    return model;
}

std::filesystem::path SpeechModel::packagedFolder()
{
    return SAYVANE_SPEECH_MODELS;
}
