#include "machine/gnome/GnomeKeyTaps.h"

#include "machine/gnome/GnomeShortcuts.h"

#include <QDBusConnection>
#include <QDBusMessage>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 300; // milliseconds; the bus itself answers

KeyChord played(KeyChord chord)
{
    if (chord.flags & KeyFlags::fn)
        chord.flags |= KeyFlags::control;
    return chord;
}

} // namespace

class GnomeKeyTaps::Tap final : public KeyTap
{
public:
    Tap(GnomeKeyTaps &taps, std::unique_ptr<KeyTap> tap) : m_taps(taps), m_tap(std::move(tap)) {}

    bool watch(std::span<const KeyChord> chords) override { return m_tap->watch(m_taps.take(chords)); }
    void enable() override { m_tap->enable(); }

private:
    GnomeKeyTaps &m_taps;
    std::unique_ptr<KeyTap> m_tap;
};

bool GnomeKeyTaps::isGnome()
{
    const QString bus = u"org.freedesktop.DBus"_s;
    QDBusMessage question =
        QDBusMessage::createMethodCall(bus, u"/org/freedesktop/DBus"_s, bus, u"NameHasOwner"_s);
    question << u"org.gnome.Shell"_s;
    return QDBusConnection::sessionBus().call(question, QDBus::Block, patience).arguments().value(0).toBool();
}

std::unique_ptr<KeyTap> GnomeKeyTaps::install(std::span<const KeyChord> chords, Handler handler)
{
    const QList<KeyChord> keys = take(chords);
    m_holder = keys.isEmpty() ? QString() : GnomeShortcuts::holderOf(keys.first());
    if (!m_holder.isEmpty())
        return nullptr;
    auto tap = m_taps.install(keys, [this, handler = std::move(handler)](KeyEvent event) {
        event.flags = meant({event.keyCode, event.flags & KeyFlags::compared});
        return handler(event);
    });
    return tap ? std::make_unique<Tap>(*this, std::move(tap)) : nullptr;
}

QList<KeyChord> GnomeKeyTaps::take(std::span<const KeyChord> chords)
{
    const QMutexLocker lock(&m_mutex);
    m_wanted = QList<KeyChord>(chords.begin(), chords.end());
    QList<KeyChord> all;
    std::ranges::transform(m_wanted, std::back_inserter(all), played);
    return all;
}

quint64 GnomeKeyTaps::meant(const KeyChord &pressed) const
{
    const QMutexLocker lock(&m_mutex);
    const auto it = std::ranges::find(m_wanted, pressed, played);
    return it == m_wanted.end() ? pressed.flags : it->flags;
}
