#pragma once

#include "base/FlowError.h"
#include "base/Microphone.h"

#include <QString>

#include <expected>
#include <functional>
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

    using Started = std::function<void(const std::expected<void, FlowError> &)>;
    using Stopped = std::function<void(const std::optional<QString> &path)>;

    /// Begins a new recording, and tells when it runs or cannot. A failed start leaves the recorder idle and
    /// no file behind; an error of the kind `platform` carries the machine's own words.
    void start(Started started);

    /// Ends the recording and tells its file once that is complete; none when there was no recording.
    void stop(Stopped stopped);

    /// Ends at once whatever is under way, also a start or a stop, about which nothing is told any more.
    /// Gives the file of the recording, where there was one; its last moments may be missing.
    std::optional<QString> abandon();

    /// Whether nothing is under way.
    bool isIdle() const { return m_phase == Phase::idle; }

    /// Whether the volume that is to hold the file has room; a volume that cannot be asked has.
    static bool hasRoom(const QString &filePath, const Volumes &volumes);

    /// The running recording, for its level; null when none runs.
    Recording *recorder() const { return m_phase == Phase::recording ? m_recorder.get() : nullptr; }

private:
    enum class Phase { idle, starting, recording, stopping };

    void open(const Started &started);
    void giveUp(FlowError error, const Started &started);

    Microphone &m_microphone;
    const Folders &m_folders;
    const Volumes &m_volumes;
    Phase m_phase = Phase::idle;
    std::shared_ptr<const bool> m_search; // for an input device
    std::unique_ptr<Recording> m_recorder;
    std::optional<QString> m_currentPath;
};
