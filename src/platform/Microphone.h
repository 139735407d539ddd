#pragma once

#include <QString>

#include <cstdint>
#include <expected>
#include <memory>

/// How sound is stored: linear PCM, in this many samples a second, channels and bits.
struct PcmFormat
{
    uint32_t sampleRate = 16000;
    uint16_t channels = 1;
    uint16_t bitDepth = 16;
    bool isFloat = false;
    bool isBigEndian = false;
};

/// One recording on its way to a WAV file. Destroying it ends the recording and closes the file.
class Recording
{
public:
    virtual ~Recording() = default;

    /// Makes everything ready to record; false when the device refuses.
    virtual bool prepare() = 0;

    /// Begins to record; false when the device refuses.
    virtual bool record() = 0;

    /// Ends the recording and closes the file, which then holds every sample heard. Safe to call twice.
    virtual void stop() = 0;

    /// Whether samples are arriving; false before `record`, after `stop`, and once the device was lost.
    virtual bool isRecording() const = 0;

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

    /// Whether there is a default sound source that is a real input, not what the speakers play.
    virtual bool hasInputDevice() const = 0;

    /// Whether the system lets this program listen.
    virtual Authorization authorization() const = 0;

    /// Asks the system for permission to listen. The answer shows in `authorization` later.
    virtual void requestAccess() = 0;

    /// Creates the file and a recording into it; the error is one finished sentence.
    virtual std::expected<std::unique_ptr<Recording>, QString> open(const QString &path,
                                                                    const PcmFormat &format) = 0;
};
