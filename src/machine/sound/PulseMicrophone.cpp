#include "machine/sound/PulseMicrophone.h"

#include "machine/sound/CaptureStream.h"
#include "machine/sound/PulseConnection.h"
#include "machine/sound/PulseLoop.h"

#include <QtEndian>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto patience = 200ms;

} // namespace

/// What goes on on the loop's thread; the rest is told by values that any thread may read.
class PulseRecording::Capture
{
public:
    Capture(PulseConnection &connection, WavFile target, uint32_t sampleRate)
        : stream(connection, sampleRate, [this](QByteArrayView pcm) { return keep(pcm); }),
          m_file(std::move(target))
    {
    }

    /// From any thread. A disk that hangs in the midst of a write is not waited for: the file is then closed
    /// when that is over, and until then its head is a moment behind.
    void closeFile()
    {
        m_isClosed = true;
        if (const std::unique_lock lock(m_mutex, patience); lock)
            m_file.close();
    }

    CaptureStream stream;
    LevelMeter meter;
    std::atomic<qint64> heard = 0;
    std::atomic<bool> isDiskLost = false;

private:
    bool keep(QByteArrayView pcm)
    {
        meter.add(pcm);
        const std::lock_guard lock(m_mutex);
        if (m_isClosed) {
            m_file.close();
            return false;
        }
        const std::expected<void, QString> kept = m_file.append(pcm);
        if (!kept) {
            qCWarning(soundLog) << "The recording ends early, its file cannot grow:" << kept.error();
            isDiskLost = true;
        }
        heard += pcm.size();
        return kept.has_value();
    }

    std::timed_mutex m_mutex;
    WavFile m_file; // guarded by it
    std::atomic<bool> m_isClosed = false;
};

PulseRecording::PulseRecording(PulseConnection &connection, WavFile file, uint32_t sampleRate)
    : m_connection(connection),
      m_capture(std::make_shared<Capture>(connection, std::move(file), sampleRate)),
      m_asks(std::make_shared<const bool>())
{
}

PulseRecording::~PulseRecording()
{
    m_capture->closeFile();
    m_connection.loop().post([capture = std::exchange(m_capture, nullptr)] { capture->stream.close(); });
}

void PulseRecording::record(std::function<void(bool)> answer)
{
    const auto told = [this, asks = std::weak_ptr(m_asks), answer = std::move(answer)](bool begun) {
        if (asks.expired())
            return;
        m_begun = begun;
        answer(begun);
    };
    m_connection.loop().post([&connection = m_connection, capture = m_capture, told] {
        connection.whenSettled([&connection, capture, told] {
            capture->stream.open([&loop = connection.loop(), told](bool isOpen) {
                loop.tellMain([told, isOpen] { told(isOpen); });
            });
        });
    });
}

void PulseRecording::stop(std::function<void()> closed)
{
    m_stopped = true;
    const auto told = [asks = std::weak_ptr(m_asks), closed = std::move(closed)] {
        if (!asks.expired())
            closed();
    };
    m_connection.loop().post(
        [&loop = m_connection.loop(), capture = m_capture, now = std::chrono::steady_clock::now(), told] {
            capture->stream.finish(now, [&loop, capture = capture.get(), told] {
                capture->closeFile();
                loop.tellMain(told);
            });
        });
}

bool PulseRecording::isRecording() const
{
    return m_begun && !m_stopped && m_capture->stream.isLive();
}

std::optional<Recording::Loss> PulseRecording::loss() const
{
    if (!m_begun || m_stopped || m_capture->stream.isLive())
        return std::nullopt;
    return m_capture->isDiskLost ? Loss::disk : Loss::microphone;
}

qint64 PulseRecording::heard() const
{
    return m_capture->heard;
}

void PulseRecording::updateMeters()
{
    m_capture->meter.read();
}

double PulseRecording::averagePower(int channel) const
{
    return channel == 0 ? m_capture->meter.power() : LevelMeter::silence;
}

void LevelMeter::add(QByteArrayView pcm)
{
    constexpr qsizetype width = sizeof(qint16);
    double squares = 0;
    for (qsizetype at = 0; at + width <= pcm.size(); at += width) {
        const double sample = qFromLittleEndian<qint16>(pcm.data() + at) / 32768.0;
        squares += sample * sample;
    }
    const std::lock_guard lock(m_mutex);
    m_squares += squares;
    m_samples += static_cast<size_t>(pcm.size() / width);
}

void LevelMeter::read()
{
    const std::lock_guard lock(m_mutex);
    if (m_samples == 0)
        return;
    const double mean = std::exchange(m_squares, 0) / static_cast<double>(std::exchange(m_samples, 0));
    m_power = mean > 0 ? std::max(silence, 10 * std::log10(mean)) : silence;
}

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
        return std::unexpected(u"Only 16-bit little-endian mono sound can be recorded"_s);
    std::expected<WavFile, QString> file = WavFile::create(path, format.sampleRate);
    if (!file)
        return std::unexpected(u"The recording file cannot be created: %1"_s.arg(file.error()));
    return std::make_unique<PulseRecording>(m_connection, std::move(*file), format.sampleRate);
}
