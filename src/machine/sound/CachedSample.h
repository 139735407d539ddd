#pragma once

#include "machine/sound/ShortSound.h"

#include <QByteArray>

#include <pulse/stream.h>

class PulseConnection;

/// A sound that the audio server keeps for us, so that playing it takes one short message. For the loop's
/// thread.
///
/// It is handed over when it is first played, and again after the server was restarted.
class CachedSample final
{
public:
    CachedSample(PulseConnection &connection, QByteArray name, ShortSound sound);
    ~CachedSample();
    CachedSample(const CachedSample &) = delete;
    CachedSample &operator=(const CachedSample &) = delete;

    /// Starts the sound and returns at once; silent while there is no server.
    void play();

private:
    void handOver();
    void handOverChanged();
    void start();
    void drop();

    PulseConnection &m_connection;
    QByteArray m_name;
    ShortSound m_sound;
    pa_stream *m_upload = nullptr;
    unsigned m_keptSince = 0; // the connection whose server has the sound
};
