#include "platform/linux/sound/PulseSoundPlayer.h"

#include "platform/linux/sound/CachedSample.h"
#include "platform/linux/sound/ShortSound.h"
#include "platform/linux/sound/soundLog.h"

#include <QStringList>

#include <optional>
#include <utility>

PulseSoundPlayer::PulseSoundPlayer(PulseConnection &connection, QString folder)
    : m_connection(connection),
      m_folder(std::move(folder))
{
}

PulseSoundPlayer::~PulseSoundPlayer() = default;

void PulseSoundPlayer::play(const QString &name)
{
    static const QStringList names{QStringLiteral("Pop"), QStringLiteral("Tink"), QStringLiteral("Funk"),
                                   QStringLiteral("Basso")};
    if (!names.contains(name))
        return;
    auto found = m_samples.find(name);
    if (found == m_samples.end())
        found = m_samples.emplace(name, load(name)).first;
    if (found->second)
        found->second->play();
}

std::unique_ptr<CachedSample> PulseSoundPlayer::load(const QString &name) const
{
    std::optional<ShortSound> sound = ShortSound::load(QStringLiteral("%1/%2.wav").arg(m_folder, name));
    if (!sound) {
        qCWarning(soundLog) << "The sound" << name << "cannot be read";
        return nullptr;
    }
    return std::make_unique<CachedSample>(m_connection, QByteArray("sayvane-") + name.toLatin1(),
                                          std::move(*sound));
}
