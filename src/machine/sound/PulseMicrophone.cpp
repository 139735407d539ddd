#include "machine/sound/PulseMicrophone.h"

#include "machine/sound/PulseConnection.h"
#include "machine/sound/PulseRecording.h"

#include <utility>

void PulseMicrophone::findInputDevice(std::function<void(bool)> answer)
{
    if (m_connection.state() == PulseConnection::State::ready)
        return answer(m_connection.hasInput());
    m_connection.loop().post([&connection = m_connection, answer = std::move(answer)] {
        connection.whenSettled([&connection, answer] {
            connection.loop().tellMain([&connection, answer] { answer(connection.hasInput()); });
        });
    });
}

Microphone::Authorization PulseMicrophone::authorization() const
{
    if (!m_connection.isRefused())
        return Authorization::authorized;
    m_connection.knock(); // it may have changed its mind
    return Authorization::denied;
}

void PulseMicrophone::requestAccess()
{
    m_connection.knock();
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
