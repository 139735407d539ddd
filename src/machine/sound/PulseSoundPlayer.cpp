#include "machine/sound/PulseSoundPlayer.h"

#include "machine/sound/PulseConnection.h"
#include "machine/sound/PulseLoop.h"

#include <QByteArray>
#include <QFile>
#include <QStringList>

#include <cstdint>
#include <map>
#include <optional>
#include <utility>

#include <pulse/operation.h>
#include <pulse/proplist.h>
#include <pulse/scache.h>
#include <pulse/stream.h>
#include <sndfile.h>

using namespace Qt::StringLiterals;

namespace {

/// A sound short enough to be held in memory: 16-bit samples in the byte order of this machine.
struct ShortSound
{
    uint32_t sampleRate = 0;
    uint8_t channels = 0;
    QByteArray pcm;

    /// Reads a sound file of up to two channels and five seconds; nothing when it is none.
    static std::optional<ShortSound> load(const QString &path)
    {
        SF_INFO info = {};
        const std::unique_ptr<SNDFILE, int (*)(SNDFILE *)> file(
            sf_open(QFile::encodeName(path).constData(), SFM_READ, &info), sf_close);
        if (!file || info.channels > 2 || info.frames <= 0 || info.frames > sf_count_t(5) * info.samplerate)
            return std::nullopt;
        ShortSound sound;
        sound.sampleRate = static_cast<uint32_t>(info.samplerate);
        sound.channels = static_cast<uint8_t>(info.channels);
        sound.pcm.resize(info.frames * info.channels * qsizetype(sizeof(short)));
        const sf_count_t read =
            sf_readf_short(file.get(), reinterpret_cast<short *>(sound.pcm.data()), info.frames);
        if (read != info.frames)
            return std::nullopt;
        return sound;
    }
};

/// A sound that the audio server keeps for us, so that playing it takes one short message. For the loop's
/// thread.
///
/// It is handed over when it is first played, and again after the server was restarted.
class CachedSample final
{
public:
    CachedSample(PulseConnection &connection, QByteArray name, ShortSound sound)
        : m_connection(connection),
          m_name(std::move(name)),
          m_sound(std::move(sound))
    {
    }

    ~CachedSample() { drop(); }

    Q_DISABLE_COPY_MOVE(CachedSample)

    /// Starts the sound and returns at once; silent while there is no server.
    void play()
    {
        if (!m_connection.context())
            return;
        if (m_keptSince == m_connection.generation()) {
            start();
        } else {
            handOver();
        }
    }

private:
    void handOver()
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

    void handOverChanged()
    {
        const pa_stream_state_t state = pa_stream_get_state(m_upload);
        if (state == PA_STREAM_READY) {
            pa_stream_write(m_upload, m_sound.pcm.constData(), static_cast<size_t>(m_sound.pcm.size()),
                            nullptr, 0, PA_SEEK_RELATIVE);
            pa_stream_finish_upload(m_upload);
        } else if (state == PA_STREAM_TERMINATED) { // the server has it all
            m_keptSince = m_connection.generation();
            drop();
            start();
        } else if (state == PA_STREAM_FAILED) {
            drop();
        }
    }

    void start()
    {
        pa_proplist *facts = pa_proplist_new();
        pa_proplist_sets(facts, PA_PROP_MEDIA_ROLE, "event");
        pa_operation *playing = pa_context_play_sample_with_proplist(
            m_connection.context(), m_name.constData(), nullptr, PA_VOLUME_INVALID, facts, nullptr, nullptr);
        if (playing)
            pa_operation_unref(playing);
        pa_proplist_free(facts);
    }

    void drop()
    {
        if (!m_upload)
            return;
        pa_stream_set_state_callback(m_upload, nullptr, nullptr);
        pa_stream_disconnect(m_upload);
        pa_stream_unref(std::exchange(m_upload, nullptr));
    }

    PulseConnection &m_connection;
    QByteArray m_name;
    ShortSound m_sound;
    pa_stream *m_upload = nullptr;
    unsigned m_keptSince = 0; // the connection whose server has the sound
};

} // namespace

class PulseSoundPlayer::Samples
{
public:
    Samples(PulseConnection &connection, QString folder)
        : m_connection(connection),
          m_folder(std::move(folder))
    {
    }

    void play(const QString &name)
    {
        auto found = m_samples.find(name);
        if (found == m_samples.end())
            found = m_samples.emplace(name, load(name)).first;
        if (found->second)
            found->second->play();
    }

private:
    std::unique_ptr<CachedSample> load(const QString &name) const
    {
        std::optional<ShortSound> sound = ShortSound::load(u"%1/%2.wav"_s.arg(m_folder, name));
        if (!sound) {
            qCWarning(soundLog) << "The sound" << name << "cannot be read";
            return nullptr;
        }
        return std::make_unique<CachedSample>(m_connection, QByteArray("sayvane-") + name.toLatin1(),
                                              std::move(*sound));
    }

    PulseConnection &m_connection;
    QString m_folder;
    std::map<QString, std::unique_ptr<CachedSample>> m_samples; // null for a file that cannot be read
};

PulseSoundPlayer::PulseSoundPlayer(PulseConnection &connection, QString folder)
    : m_connection(connection),
      m_samples(std::make_shared<Samples>(connection, std::move(folder)))
{
}

PulseSoundPlayer::~PulseSoundPlayer()
{
    m_connection.loop().post([samples = std::exchange(m_samples, nullptr)] {});
}

void PulseSoundPlayer::play(const QString &name)
{
    static const QStringList names{u"Pop"_s, u"Tink"_s, u"Funk"_s, u"Basso"_s};
    if (names.contains(name))
        m_connection.loop().post([samples = m_samples, name] { samples->play(name); });
}
