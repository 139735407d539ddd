#pragma once

#include "base/Microphone.h"
#include "machine/sound/WavFile.h"

#include <QByteArrayView>

#include <cstddef>
#include <mutex>

class PulseConnection;

/// How loud it was since the last reading: filled by the thread that hears, read by another.
class LevelMeter final
{
public:
    /// What digital silence reads, in dBFS.
    static constexpr double silence = -120;

    /// Takes in 16-bit little-endian samples of one channel.
    void add(QByteArrayView pcm);

    /// Reads off everything added since the last reading. When nothing was, the last reading stands.
    void read();

    /// The root mean square at the last reading in dBFS: a square wave at full scale reads 0, a sine -3.
    double power() const { return m_power; }

private:
    std::mutex m_mutex; // guards the two sums
    double m_squares = 0;
    size_t m_samples = 0;
    double m_power = silence;
};

/// A recording of the audio server's microphone, written to its file as it is heard.
///
/// A full disk ends the recording, and the file keeps what it holds.
class PulseRecording final : public Recording
{
public:
    PulseRecording(PulseConnection &connection, WavFile file, uint32_t sampleRate);
    ~PulseRecording() override;

    void record(std::function<void(bool)> answer) override;
    void stop(std::function<void()> closed) override;
    bool isRecording() const override;
    std::optional<Loss> loss() const override;
    qint64 heard() const override;
    void updateMeters() override;
    double averagePower(int channel) const override;

private:
    class Capture;

    PulseConnection &m_connection;
    std::shared_ptr<Capture> m_capture; // lives, and dies, on the loop's thread
    std::shared_ptr<const bool> m_asks; // there are answers only while it is there
    bool m_begun = false;
    bool m_stopped = false;
};

/// The microphone of the audio server: its default source, or, when that is a monitor of what the
/// speakers play, the first real one.
class PulseMicrophone final : public Microphone
{
public:
    explicit PulseMicrophone(PulseConnection &connection) : m_connection(connection) {}

    void findInputDevice(std::function<void(bool)> answer) override;

    /// `denied` when a server runs but turned us away. No server at all is a matter of
    /// `findInputDevice`: there is nobody who could object.
    Authorization authorization() const override;

    /// An audio server has nothing to ask the user: this knocks once more.
    void requestAccess() override;

    std::expected<std::unique_ptr<Recording>, QString> open(const QString &path,
                                                            const PcmFormat &format) override;

private:
    PulseConnection &m_connection;
};
