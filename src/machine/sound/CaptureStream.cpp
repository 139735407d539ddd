#include "machine/sound/CaptureStream.h"

#include "machine/sound/PulseConnection.h"
#include "machine/sound/PulseLoop.h"

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
    close();
}

void CaptureStream::open(std::function<void(bool)> opened)
{
    m_opened = std::move(opened);
    if (!connect())
        return answer(false);
    m_patience.emplace(m_connection.loop(), patience, [this] { answer(false); });
}

void CaptureStream::answer(bool isOpen)
{
    m_patience.reset();
    if (!isOpen)
        hangUp();
    if (const auto opened = std::exchange(m_opened, nullptr))
        opened(isOpen);
}

void CaptureStream::finish(Instant moment, std::function<void()> finished)
{
    m_moment = moment;
    m_finished = std::move(finished);
    if (!m_live)
        return conclude();
    m_question = pa_stream_update_timing_info(
        m_stream, [](pa_stream *, int, void *self) { static_cast<CaptureStream *>(self)->latencyKnown(); },
        this);
    if (!m_question)
        return conclude();
    const auto left = std::chrono::duration_cast<microseconds>(moment + longestTail - steady_clock::now());
    m_patience.emplace(m_connection.loop(), left, [this] { conclude(); });
}

void CaptureStream::latencyKnown()
{
    pa_operation_unref(std::exchange(m_question, nullptr));
    pa_usec_t latency = 0; // how old the next sample to arrive is
    int isNegative = 0;
    if (pa_stream_get_latency(m_stream, &latency, &isNegative) < 0 || isNegative)
        return conclude();
    const auto since = std::chrono::duration_cast<microseconds>(steady_clock::now() - m_moment);
    const auto missing = microseconds(latency) - since;
    if (missing <= 0us)
        return conclude();
    m_wanted = m_received + pa_usec_to_bytes(pa_usec_t(missing.count()), &m_format);
}

void CaptureStream::conclude()
{
    m_patience.reset();
    hangUp();
    if (const auto finished = std::exchange(m_finished, nullptr))
        finished();
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
    m_patience.reset();
    m_opened = nullptr;
    m_finished = nullptr;
    hangUp();
}

void CaptureStream::hangUp()
{
    m_live = false;
    if (m_question) {
        pa_operation_cancel(m_question);
        pa_operation_unref(std::exchange(m_question, nullptr));
    }
    if (!m_stream)
        return;
    pa_stream_set_state_callback(m_stream, nullptr, nullptr);
    pa_stream_set_moved_callback(m_stream, nullptr, nullptr);
    pa_stream_set_read_callback(m_stream, nullptr, nullptr);
    pa_stream_disconnect(m_stream);
    pa_stream_unref(std::exchange(m_stream, nullptr));
}

// Whoever waits for the microphone or for the rest is told when it ends.
void CaptureStream::ended()
{
    if (m_opened)
        return answer(false);
    conclude();
}

void CaptureStream::stateChanged()
{
    const pa_stream_state_t state = pa_stream_get_state(m_stream);
    if (state == PA_STREAM_READY) {
        m_live = true;
        return answer(true);
    }
    if (state != PA_STREAM_FAILED && state != PA_STREAM_TERMINATED)
        return;
    const char *cause = pa_strerror(pa_context_errno(pa_stream_get_context(m_stream)));
    qCWarning(soundLog) << (m_live ? "The microphone is lost:" : "The microphone refuses:") << cause;
    ended();
}

void CaptureStream::moved()
{
    if (!m_connection.sources().isMonitor(pa_stream_get_device_index(m_stream)))
        return;
    qCWarning(soundLog) << "The microphone is lost: only monitors are left";
    ended();
}

void CaptureStream::arrived()
{
    const void *data = nullptr;
    size_t size = 0;
    bool goesOn = true;
    while (goesOn && pa_stream_peek(m_stream, &data, &size) >= 0 && size > 0) {
        // A hole keeps its length, as silence.
        const QByteArray hole = data ? QByteArray() : QByteArray(qsizetype(size), '\0');
        const auto pcm = data ? QByteArrayView(static_cast<const char *>(data), qsizetype(size)) : hole;
        m_received += size;
        goesOn = m_listener(pcm);
        pa_stream_drop(m_stream);
    }
    if (!goesOn)
        return ended();
    if (m_wanted && m_received >= *m_wanted)
        conclude();
}
