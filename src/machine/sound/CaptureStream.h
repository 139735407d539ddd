#pragma once

#include "machine/sound/PulseLoop.h"

#include <QByteArrayView>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

#include <pulse/stream.h>

class PulseConnection;

/// Sound on its way from the microphone to us: 16-bit little-endian samples of one channel. For the loop's
/// thread.
///
/// It ends by itself when the server or the microphone goes away, and also when the server would go on
/// with what the speakers play instead.
class CaptureStream final
{
public:
    using Instant = std::chrono::steady_clock::time_point;
    /// Is given what was heard; returns whether to go on.
    using Listener = std::function<bool(QByteArrayView pcm)>;

    CaptureStream(PulseConnection &connection, uint32_t sampleRate, Listener listener);
    ~CaptureStream();
    Q_DISABLE_COPY_MOVE(CaptureStream)

    /// Opens the microphone, and tells whether it is open: not when the server refuses or does not answer in
    /// a second.
    void open(std::function<void(bool isOpen)> opened);

    /// Gathers what was said before the moment but has not arrived yet, for 60 ms after it at most, closes
    /// the microphone, and tells.
    void finish(Instant moment, std::function<void()> finished);

    /// Closes the microphone; who waits is told nothing any more. Safe to call twice.
    void close();

    /// Whether the microphone is open and sound may arrive. From any thread.
    bool isLive() const { return m_live; }

private:
    bool connect();
    void hangUp();
    void answer(bool isOpen);
    void conclude();
    void ended();

    // Called by libpulse.
    void stateChanged();
    void moved();
    void arrived();
    void latencyKnown();

    PulseConnection &m_connection;
    pa_sample_spec m_format;
    Listener m_listener;
    pa_stream *m_stream = nullptr;
    pa_operation *m_question = nullptr; // how late samples arrive
    std::optional<LoopTimer> m_patience;
    std::function<void(bool)> m_opened; // while it opens
    std::function<void()> m_finished;   // while it gathers the rest
    Instant m_moment;                   // before which that was said
    std::optional<uint64_t> m_wanted;   // bytes, of all: with them the rest is complete
    uint64_t m_received = 0;            // bytes
    std::atomic<bool> m_live = false;
};
