#pragma once

#include <filesystem>

/// Where an acoustic model, a language model and a dictionary of US English lie.
struct SpeechModel
{
    std::filesystem::path acoustic;
    std::filesystem::path language;
    std::filesystem::path dictionary;

    /// The model below a folder laid out like the packaged one: "en-us/en-us", "en-us/en-us.lm.bin",
    /// "en-us/cmudict-en-us.dict". Throws std::runtime_error when a part is missing.
    static SpeechModel in(const std::filesystem::path &folder);
    /// The folder that the speech library was packaged with.
    static std::filesystem::path packagedFolder();
};
