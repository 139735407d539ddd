#include "platform/linux/sound/PulseRecording.h"

#include "platform/linux/sound/soundLog.h"

#include <utility>

PulseRecording::PulseRecording(PulseConnection &connection, WavFile file, uint32_t sampleRate)
    : m_file(std::move(file)),
      m_stream(connection, sampleRate, [this](QByteArrayView pcm) { return heard(pcm); })
{
}

bool PulseRecording::prepare()
{
    return m_stream.open();
}

bool PulseRecording::record()
{
    m_recording = prepare();
    return m_recording;
}

void PulseRecording::stop()
{
    m_stream.finish();
    m_recording = false;
    m_file.close();
}

bool PulseRecording::isRecording() const
{
    return m_recording && m_stream.isLive();
}

void PulseRecording::updateMeters()
{
    m_meter.read();
}

double PulseRecording::averagePower(int channel) const
{
    return channel == 0 ? m_meter.power() : LevelMeter::silence;
}

bool PulseRecording::heard(QByteArrayView pcm)
{
    if (!m_recording)
        return true;
    m_meter.add(pcm);
    const std::expected<void, QString> kept = m_file.append(pcm);
    if (!kept)
        qCWarning(soundLog) << "The recording ends early, its file cannot grow:" << kept.error();
    return kept.has_value();
}
