#include "platform/linux/sound/PulseMicrophone.h"

#include "platform/linux/sound/PulseConnection.h"
#include "platform/linux/sound/PulseRecording.h"

#include <utility>

bool PulseMicrophone::hasInputDevice() const
{
    return m_connection.hasInput();
}

Microphone::Authorization PulseMicrophone::authorization() const
{
    const bool refused = m_connection.settledState() == PulseConnection::State::refused;
    return refused ? Authorization::denied : Authorization::authorized;
}

void PulseMicrophone::requestAccess()
{
    m_connection.settledState();
}

std::expected<std::unique_ptr<Recording>, QString> PulseMicrophone::open(const QString &path,
                                                                         const PcmFormat &format)
{
    const bool isSupported = format.channels == 1 && format.bitDepth == 16 && !format.isFloat &&
                             !format.isBigEndian && format.sampleRate >= 8000 &&
                             format.sampleRate <= PA_RATE_MAX;
    if (!isSupported)
        return std::unexpected(QStringLiteral("Only 16-bit little-endian mono sound can be recorded"));
    std::expected<WavFile, QString> file = WavFile::create(path, format.sampleRate);
    if (!file)
        return std::unexpected(QStringLiteral("The recording file cannot be created: %1").arg(file.error()));
    return std::make_unique<PulseRecording>(m_connection, std::move(*file), format.sampleRate);
}
