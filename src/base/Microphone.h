#pragma once

#include <QString>

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <optional>

/// How sound is stored: linear PCM, in this many samples a second, channels and bits.
struct PcmFormat
{
    uint32_t sampleRate = 16000;
    uint16_t channels = 1;
    uint16_t bitDepth = 16;
    bool isFloat = false;
    bool isBigEndian = false;
};

/// One recording on its way to a WAV file.
///
/// Nothing here waits for the device. An answer comes on the main thread, perhaps from within the call, and
/// never once the recording was destroyed.
class Recording
{
public:
    /// What ended a recording that nobody stopped.
    enum class Loss { microphone, disk };

    /// Ends the recording at once and closes the file; of what was said last, some may be missing.
    virtual ~Recording() = default;

    /// Opens the device and begins to record. Tells within a second or two whether it does; false when the
    /// device refuses or does not answer.
    virtual void record(std::function<void(bool begun)> answer) = 0;

    /// Ends the recording, and tells once the file is closed: it then holds every sample heard before this
    /// call. A device that does not answer costs some hundredths of a second.
    virtual void stop(std::function<void()> closed) = 0;

    /// Whether the device is at it; false until `record` was answered, after `stop`, and after a loss.
    virtual bool isRecording() const = 0;

    /// Why it is no longer recording, where nobody stopped it; the file keeps what was heard.
    virtual std::optional<Loss> loss() const = 0;

    /// How many bytes of samples have arrived so far.
    virtual qint64 heard() const = 0;

    /// Takes a fresh reading of the level.
    virtual void updateMeters() = 0;

    /// The average power of the channel at the last reading in dBFS: 0 at full scale, negative below.
    virtual double averagePower(int channel) const = 0;
};

/// The default microphone, recorded to a file.
class Microphone
{
public:
    enum class Authorization { notDetermined, denied, authorized };

    virtual ~Microphone() = default;

    /// Finds out whether there is a default sound source that is a real input, not what the speakers play.
    /// The answer comes on the main thread: from within the call where it is known, else in a moment.
    virtual void findInputDevice(std::function<void(bool found)> answer) = 0;

    /// Whether the system lets this program listen, as far as it is known.
    virtual Authorization authorization() const = 0;

    /// Asks the system for permission to listen. The answer shows in `authorization` later.
    virtual void requestAccess() = 0;

    /// Creates the file and a recording into it; the error is one finished sentence.
    virtual std::expected<std::unique_ptr<Recording>, QString> open(const QString &path,
                                                                    const PcmFormat &format) = 0;
};
