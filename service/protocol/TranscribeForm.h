#pragma once

#include "service/protocol/Refusal.h"

#include <httplib.h>

#include <cstddef>
#include <expected>
#include <string>

/// The multipart body of a request for transcription, taken in part by part as it arrives, so that one
/// with too much in it is refused without being held.
class TranscribeForm
{
public:
    static constexpr size_t maximumRecording = size_t{25} << 20; // bytes; 570 s are 18.3 million

    /// Reads the body to its end, or to the first thing that is wrong with it.
    static std::expected<TranscribeForm, Refusal> read(const httplib::ContentReader &body);

    const std::string &recording() const { return m_recording.content; }
    const std::string &language() const { return m_language.content; }
    const std::string &prompt() const { return m_prompt.content; }
    /// Gives the memory of the recording back.
    void dropRecording() { m_recording.content = {}; }

private:
    struct Part
    {
        std::string content;
        size_t limit = 0;
        bool seen = false;
    };

    std::optional<Refusal> begin(const std::string &name);
    std::optional<Refusal> append(const char *bytes, size_t size);
    std::optional<Refusal> complaint() const;

    Part m_recording{{}, maximumRecording, false};
    Part m_language{{}, 64, false};
    Part m_prompt{{}, 32768, false};
    Part *m_current = nullptr;
};
