#include "machine/sound/PulseRecording.h"

#include "machine/sound/CaptureStream.h"
#include "machine/sound/LevelMeter.h"
#include "machine/sound/PulseConnection.h"
#include "machine/sound/soundLog.h"

#include <atomic>
#include <chrono>
#include <mutex>
#include <utility>

using namespace std::chrono_literals;

namespace {
constexpr auto patience = 200ms;
}

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
