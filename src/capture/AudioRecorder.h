#pragma once

#include "platform/Microphone.h"
#include "values/FlowError.h"

#include <QString>

#include <expected>
#include <memory>
#include <optional>

class Folders;
class Volumes;

/// Records the default microphone into a temporary WAV file, one dictation at a time.
class AudioRecorder
{
public:
    /// Bytes that must be free on the volume before a recording may start: 50 MB.
    static constexpr int64_t minimumCapacity = 50 * 1024 * 1024;
    /// How every recording is stored: 32,000 bytes of samples a second.
    static constexpr PcmFormat format{
        .sampleRate = 16000, .channels = 1, .bitDepth = 16, .isFloat = false, .isBigEndian = false};

    AudioRecorder(Microphone &microphone, const Folders &folders, const Volumes &volumes);

    /// Begins a new recording. A failed start leaves the recorder idle and no file behind; an error of
    /// the kind `platform` carries the machine's own words.
    std::expected<void, FlowError> start();

    /// Ends the recording and gives its file; none when there was no recording.
    std::optional<QString> stop();

    /// Whether the volume that is to hold the file has room; a volume that cannot be asked has.
    static bool hasRoom(const QString &filePath, const Volumes &volumes);

    /// The running recording, for its level; null when idle.
    Recording *recorder() const { return m_recorder.get(); }

private:
    Microphone &m_microphone;
    const Folders &m_folders;
    const Volumes &m_volumes;
    std::unique_ptr<Recording> m_recorder;
    std::optional<QString> m_currentPath;
};
