#include "platform/linux/sound/CaptureStream.h"

#include "platform/linux/sound/PulseConnection.h"
#include "platform/linux/sound/soundLog.h"

#include <QByteArray>

#include <algorithm>
#include <utility>

#include <pulse/error.h>
#include <pulse/operation.h>
#include <pulse/timeval.h>

namespace {

using namespace std::chrono_literals;
using std::chrono::microseconds;
using std::chrono::steady_clock;

constexpr auto patience = 1s;      // waking a wireless microphone takes the server a while
constexpr auto longestTail = 60ms; // what a wired microphone holds back, several times over
constexpr pa_usec_t portion = 10 * PA_USEC_PER_MSEC;

constexpr auto flags = pa_stream_flags_t(PA_STREAM_ADJUST_LATENCY      // the device itself shall hurry
                                         | PA_STREAM_FAIL_ON_SUSPEND); // a busy device says so

} // namespace

CaptureStream::CaptureStream(PulseConnection &connection, uint32_t sampleRate, Listener listener)
    : m_connection(connection),
      m_format{.format = PA_SAMPLE_S16LE, .rate = sampleRate, .channels = 1},
      m_listener(std::move(listener))
{
}

CaptureStream::~CaptureStream()
{
    const std::unique_lock lock(m_connection.loop());
    close();
}

bool CaptureStream::open()
{
    std::unique_lock lock(m_connection.loop());
    if (!m_stream && connect()) {
        m_connection.loop().await(lock, steady_clock::now() + patience,
                                  [this] { return pa_stream_get_state(m_stream) != PA_STREAM_CREATING; });
    }
    if (!m_live)
        close();
    return m_live;
}

void CaptureStream::finish()
{
    const Instant now = steady_clock::now();
    std::unique_lock lock(m_connection.loop());
    if (m_live)
        awaitWhatWasSaid(lock, now);
    close();
}

bool CaptureStream::connect()
{
    pa_context *context = m_connection.context();
    m_stream = context ? pa_stream_new(context, "Dictation", &m_format, nullptr) : nullptr;
    if (!m_stream)
        return false;
    pa_stream_set_state_callback(
        m_stream, [](pa_stream *, void *self) { static_cast<CaptureStream *>(self)->stateChanged(); }, this);
    pa_stream_set_moved_callback(
        m_stream, [](pa_stream *, void *self) { static_cast<CaptureStream *>(self)->moved(); }, this);
    pa_stream_set_read_callback(
        m_stream, [](pa_stream *, size_t, void *self) { static_cast<CaptureStream *>(self)->arrived(); },
        this);

    constexpr auto servers = uint32_t(-1); // the server's own choice
    const auto fragment = static_cast<uint32_t>(pa_usec_to_bytes(portion, &m_format));
    const pa_buffer_attr attributes{servers, servers, servers, servers, fragment};
    const QByteArray source = m_connection.sources().choice();
    return pa_stream_connect_record(m_stream, source.isEmpty() ? nullptr : source.constData(), &attributes,
                                    flags) >= 0;
}

void CaptureStream::close()
{
    if (!m_stream)
        return;
    hangUp();
    pa_stream_unref(std::exchange(m_stream, nullptr));
}

void CaptureStream::hangUp()
{
    m_live = false;
    pa_stream_set_state_callback(m_stream, nullptr, nullptr);
    pa_stream_set_moved_callback(m_stream, nullptr, nullptr);
    pa_stream_set_read_callback(m_stream, nullptr, nullptr);
    pa_stream_disconnect(m_stream);
}

void CaptureStream::awaitWhatWasSaid(std::unique_lock<PulseLoop> &lock, Instant now)
{
    const Instant deadline = now + longestTail;
    const microseconds age(latency(lock, deadline)); // of the next sample to arrive
    const auto missing = age - std::chrono::duration_cast<microseconds>(steady_clock::now() - now);
    if (missing <= 0us)
        return;
    const uint64_t wanted = m_received + pa_usec_to_bytes(pa_usec_t(missing.count()), &m_format);
    m_connection.loop().await(lock, deadline, [this, wanted] { return m_received >= wanted || !m_live; });
}

pa_usec_t CaptureStream::latency(std::unique_lock<PulseLoop> &lock, Instant deadline)
{
    pa_operation *operation = pa_stream_update_timing_info(
        m_stream,
        [](pa_stream *, int, void *self) {
            static_cast<CaptureStream *>(self)->m_connection.loop().announce();
        },
        this);
    if (!operation)
        return 0;
    m_connection.loop().await(
        lock, deadline, [operation] { return pa_operation_get_state(operation) != PA_OPERATION_RUNNING; });
    pa_operation_cancel(operation);
    pa_operation_unref(operation);
    pa_usec_t latency = 0;
    int isNegative = 0;
    const bool known = pa_stream_get_latency(m_stream, &latency, &isNegative) >= 0;
    return known && !isNegative ? latency : 0;
}

void CaptureStream::stateChanged()
{
    const pa_stream_state_t state = pa_stream_get_state(m_stream);
    if (state == PA_STREAM_FAILED || state == PA_STREAM_TERMINATED) {
        const char *cause = pa_strerror(pa_context_errno(pa_stream_get_context(m_stream)));
        qCWarning(soundLog) << (m_live ? "The microphone is lost:" : "The microphone refuses:") << cause;
    }
    m_live = state == PA_STREAM_READY;
    m_connection.loop().announce();
}

void CaptureStream::moved()
{
    if (!m_connection.sources().isMonitor(pa_stream_get_device_index(m_stream)))
        return;
    qCWarning(soundLog) << "The microphone is lost: only monitors are left";
    hangUp();
    m_connection.loop().announce();
}

void CaptureStream::arrived()
{
    const void *data = nullptr;
    size_t size = 0;
    while (m_live && pa_stream_peek(m_stream, &data, &size) >= 0 && size > 0) {
        // A hole keeps its length, as silence.
        const QByteArray hole = data ? QByteArray() : QByteArray(qsizetype(size), '\0');
        const auto pcm = data ? QByteArrayView(static_cast<const char *>(data), qsizetype(size)) : hole;
        m_received += size;
        const bool goOn = m_listener(pcm);
        pa_stream_drop(m_stream);
        if (!goOn)
            hangUp();
    }
    m_connection.loop().announce();
}
