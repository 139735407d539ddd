#pragma once

#include "base/Microphone.h"
#include "machine/sound/WavFile.h"

class PulseConnection;

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
