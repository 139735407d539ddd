#include "machine/sound/PulseSoundPlayer.h"

#include "machine/sound/CachedSample.h"
#include "machine/sound/PulseConnection.h"
#include "machine/sound/ShortSound.h"
#include "machine/sound/soundLog.h"

#include <QStringList>

#include <map>
#include <optional>
#include <utility>

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
        std::optional<ShortSound> sound = ShortSound::load(QStringLiteral("%1/%2.wav").arg(m_folder, name));
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
    static const QStringList names{QStringLiteral("Pop"), QStringLiteral("Tink"), QStringLiteral("Funk"),
                                   QStringLiteral("Basso")};
    if (names.contains(name))
        m_connection.loop().post([samples = m_samples, name] { samples->play(name); });
}
