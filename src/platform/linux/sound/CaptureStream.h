#pragma once

#include <QByteArrayView>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>

#include <pulse/stream.h>

class PulseConnection;
class PulseLoop;

/// Sound on its way from the microphone to us: 16-bit little-endian samples of one channel.
///
/// It ends by itself when the server or the microphone goes away, and also when the server would go on
/// with what the speakers play instead.
class CaptureStream final
{
public:
    /// Is given what was heard, on the loop's thread; returns whether to go on.
    using Listener = std::function<bool(QByteArrayView pcm)>;

    CaptureStream(PulseConnection &connection, uint32_t sampleRate, Listener listener);
    ~CaptureStream();
    CaptureStream(const CaptureStream &) = delete;
    CaptureStream &operator=(const CaptureStream &) = delete;

    /// Opens the microphone; false when the server refuses or does not answer in time.
    bool open();

    /// Waits for what was said before this call but has not arrived yet, 60 ms at most, and closes the
    /// microphone. Safe to call twice.
    void finish();

    /// Whether the microphone is open and sound may arrive.
    bool isLive() const { return m_live; }

private:
    using Instant = std::chrono::steady_clock::time_point;

    bool connect();
    void close();
    void hangUp();
    void awaitWhatWasSaid(std::unique_lock<PulseLoop> &lock, Instant now);
    pa_usec_t latency(std::unique_lock<PulseLoop> &lock, Instant deadline);

    // Called by libpulse.
    void stateChanged();
    void moved();
    void arrived();

    PulseConnection &m_connection;
    pa_sample_spec m_format;
    Listener m_listener;
    pa_stream *m_stream = nullptr;
    uint64_t m_received = 0; // bytes
    std::atomic<bool> m_live = false;
};
