#include "machine/sound/CachedSample.h"

#include "machine/sound/PulseConnection.h"

#include <utility>

#include <pulse/operation.h>
#include <pulse/proplist.h>
#include <pulse/scache.h>

CachedSample::CachedSample(PulseConnection &connection, QByteArray name, ShortSound sound)
    : m_connection(connection),
      m_name(std::move(name)),
      m_sound(std::move(sound))
{
}

CachedSample::~CachedSample()
{
    drop();
}

void CachedSample::play()
{
    if (!m_connection.context())
        return;
    if (m_keptSince == m_connection.generation()) {
        start();
    } else {
        handOver();
    }
}

void CachedSample::handOver()
{
    if (m_upload && pa_stream_get_context(m_upload) == m_connection.context())
        return; // on its way already, and played on arrival
    drop();
    const pa_sample_spec format{PA_SAMPLE_S16NE, m_sound.sampleRate, m_sound.channels};
    m_upload = pa_stream_new(m_connection.context(), m_name.constData(), &format, nullptr);
    if (!m_upload)
        return;
    pa_stream_set_state_callback(
        m_upload, [](pa_stream *, void *self) { static_cast<CachedSample *>(self)->handOverChanged(); },
        this);
    pa_stream_connect_upload(m_upload, static_cast<size_t>(m_sound.pcm.size()));
}

void CachedSample::handOverChanged()
{
    const pa_stream_state_t state = pa_stream_get_state(m_upload);
    if (state == PA_STREAM_READY) {
        pa_stream_write(m_upload, m_sound.pcm.constData(), static_cast<size_t>(m_sound.pcm.size()), nullptr,
                        0, PA_SEEK_RELATIVE);
        pa_stream_finish_upload(m_upload);
    } else if (state == PA_STREAM_TERMINATED) { // the server has it all
        m_keptSince = m_connection.generation();
        drop();
        start();
    } else if (state == PA_STREAM_FAILED) {
        drop();
    }
}

void CachedSample::start()
{
    pa_proplist *facts = pa_proplist_new();
    pa_proplist_sets(facts, PA_PROP_MEDIA_ROLE, "event");
    pa_operation *playing = pa_context_play_sample_with_proplist(
        m_connection.context(), m_name.constData(), nullptr, PA_VOLUME_INVALID, facts, nullptr, nullptr);
    if (playing)
        pa_operation_unref(playing);
    pa_proplist_free(facts);
}

void CachedSample::drop()
{
    if (!m_upload)
        return;
    pa_stream_set_state_callback(m_upload, nullptr, nullptr);
    pa_stream_disconnect(m_upload);
    pa_stream_unref(std::exchange(m_upload, nullptr));
}
