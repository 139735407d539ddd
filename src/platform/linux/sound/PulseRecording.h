#pragma once

#include "platform/Microphone.h"
#include "platform/linux/sound/CaptureStream.h"
#include "platform/linux/sound/LevelMeter.h"
#include "platform/linux/sound/WavFile.h"

#include <atomic>

/// A recording of the audio server's microphone, written to its file as it is heard.
///
/// `prepare` opens the microphone; what it hears before `record` is dropped. A full disk ends the
/// recording, and the file keeps what it holds.
class PulseRecording final : public Recording
{
public:
    PulseRecording(PulseConnection &connection, WavFile file, uint32_t sampleRate);

    bool prepare() override;
    bool record() override;
    void stop() override;
    bool isRecording() const override;
    void updateMeters() override;
    double averagePower(int channel) const override;

private:
    bool heard(QByteArrayView pcm);

    WavFile m_file;
    LevelMeter m_meter;
    std::atomic<bool> m_recording = false;
    CaptureStream m_stream;
};
