#include "machine/portal/PortalKeyTaps.h"

#include "base/DefaultsStore.h"
#include "machine/desktop/KeyPositions.h"
#include "machine/portal/Portal.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMetaType>
#include <QPointer>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// A shortcut as the portal takes and gives it: (sa{sv}).
struct PortalShortcut
{
    QString id;
    QVariantMap properties;
};
Q_DECLARE_METATYPE(PortalShortcut)

QDBusArgument &operator<<(QDBusArgument &argument, const PortalShortcut &shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, PortalShortcut &shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

namespace {

const QString interface = u"org.freedesktop.portal.GlobalShortcuts"_s;
const QString sessionInterface = u"org.freedesktop.portal.Session"_s;
const QString key = u"portalShortcuts"_s;
constexpr auto timeToAnswer = 120s;
constexpr qint64 escapeKeyCode = 53;

/// As the shortcuts of the desktops are written, such as "CTRL+LOGO+space". Nothing for a modifier that they
/// do not know: the person chooses the keys then.
QString triggerOf(const KeyChord &chord)
{
    if (chord.flags & KeyFlags::command)
        return {};
    QString trigger;
    for (const auto &[flag, name] :
         {std::pair(KeyFlags::control, u"CTRL+"), std::pair(KeyFlags::option, u"ALT+"),
          std::pair(KeyFlags::shift, u"SHIFT+"), std::pair(KeyFlags::fn, u"LOGO+")}) {
        if (chord.flags & flag)
            trigger += QString::fromUtf16(name);
    }
    std::array<char, 64> symbol{};
    xkb_keysym_get_name(KeyPositions::symbol(chord.keyCode), symbol.data(), symbol.size());
    return trigger + QString::fromLatin1(symbol.data());
}

KeyChord cancelOf(const KeyChord &toggle)
{
    return {.keyCode = escapeKeyCode, .flags = toggle.flags};
}

/// The desktop remembers keys by this name, and never changes them by itself: other keys have another one.
QString idOf(const QString &action, const KeyChord &chord)
{
    return u"%1-%2-%3"_s.arg(action, QString::number(chord.flags, 16), QString::number(chord.keyCode));
}

PortalShortcut shortcut(const QString &action, const KeyChord &chord, const QString &description)
{
    PortalShortcut made{.id = idOf(action, chord), .properties = {}};
    made.properties.insert(u"description"_s, description);
    if (const QString trigger = triggerOf(chord); !trigger.isEmpty())
        made.properties.insert(u"preferred_trigger"_s, trigger);
    return made;
}

} // namespace

class PortalKeyTaps::Tap final : public KeyTap
{
public:
    Tap(PortalKeyTaps &taps, std::span<const KeyChord> chords, Handler handler)
        : m_taps(taps),
          m_handler(std::move(handler))
    {
        taps.m_tap = this;
        watch(chords);
    }
    ~Tap() override { m_taps.m_tap = nullptr; }
    Q_DISABLE_COPY_MOVE(Tap)

    bool watch(std::span<const KeyChord> chords) override
    {
        m_chords = QList<KeyChord>(chords.begin(), chords.end());
        return true;
    }
    void enable() override {}

    /// Escape is plain for whoever watches for it.
    void tell(KeyEventType type, const KeyChord &pressed, bool isAutorepeat) const
    {
        const KeyChord chord{pressed.keyCode, pressed.keyCode == escapeKeyCode ? 0 : pressed.flags};
        if (m_chords.contains(chord))
            m_handler(
                {.type = type, .keyCode = chord.keyCode, .flags = chord.flags, .isAutorepeat = isAutorepeat});
    }

private:
    PortalKeyTaps &m_taps;
    Handler m_handler;
    QList<KeyChord> m_chords;
};

PortalKeyTaps::PortalKeyTaps(Portal &portal, DefaultsStore &store) : m_portal(portal), m_store(store)
{
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
    connect(&portal, &Portal::lost, this, [this] {
        m_session.clear();
        m_bound.reset();
    });
    connect(&portal, &Portal::found, this, &PortalKeyTaps::bind);
}

PortalKeyTaps::~PortalKeyTaps()
{
    end();
}

bool PortalKeyTaps::isOffered() const
{
    return m_portal.version(interface) > 0;
}

bool PortalKeyTaps::isOpen() const
{
    return m_bound && m_bound == m_wanted;
}

bool PortalKeyTaps::isRefused() const
{
    const QJsonValue answer = m_store.value(key);
    return answer.isBool() && !answer.toBool();
}

void PortalKeyTaps::ask()
{
    m_mayAsk = true;
    bind();
}

bool PortalKeyTaps::forget()
{
    const bool wasAnswered = !m_store.value(key).isUndefined();
    m_store.remove(key);
    return wasAnswered;
}

std::unique_ptr<KeyTap> PortalKeyTaps::install(std::span<const KeyChord> chords, Handler handler)
{
    if (m_tap || chords.empty())
        return nullptr;
    m_wanted = chords.front();
    if (isOpen())
        return std::make_unique<Tap>(*this, chords, std::move(handler));
    bind();
    return nullptr;
}

QCoro::Task<> PortalKeyTaps::bind()
{
    const QPointer self(this);
    if (m_isBinding || !m_mayAsk || !isOffered() || isRefused() || !m_wanted || isOpen())
        co_return;
    m_isBinding = true;
    const KeyChord chord = *m_wanted;
    end();
    const QString session = co_await m_portal.createSession(interface);
    if (!self)
        co_return;
    Portal::Answer answer;
    if (!session.isEmpty()) {
        QList<PortalShortcut> shortcuts;
        shortcuts.append(shortcut(u"toggle"_s, chord, tr("Start or stop dictation")));
        shortcuts.append(shortcut(u"cancel"_s, cancelOf(chord), tr("Cancel the dictation")));
        QVariantList arguments;
        arguments << QVariant::fromValue(QDBusObjectPath(session)) << QVariant::fromValue(shortcuts)
                  << QString();
        answer =
            co_await m_portal.request(interface, u"BindShortcuts"_s, arguments, QVariantMap(), timeToAnswer);
        if (!self)
            co_return;
    }
    m_isBinding = false;
    const auto given = qdbus_cast<QList<PortalShortcut>>(answer.results.value(u"shortcuts"_s));
    if (answer.outcome == Portal::Answer::Outcome::given &&
        std::ranges::find(given, idOf(u"toggle"_s, chord), &PortalShortcut::id) != given.end()) {
        m_session = session;
        m_bound = chord;
        QDBusConnection bus = m_portal.bus();
        for (const auto &[signal, slot] :
             {std::pair(u"Activated"_s, SLOT(activated(QDBusObjectPath, QString, qulonglong, QVariantMap))),
              std::pair(u"Deactivated"_s,
                        SLOT(deactivated(QDBusObjectPath, QString, qulonglong, QVariantMap)))})
            bus.connect(Portal::service(), Portal::path(), interface, signal, this, slot);
        bus.connect(Portal::service(), session, sessionInterface, u"Closed"_s, this, SLOT(closed()));
    } else {
        m_portal.closeSession(session);
    }
    if (answer.outcome != Portal::Answer::Outcome::failed) {
        m_store.setValue(key, answer.outcome == Portal::Answer::Outcome::given);
        Q_EMIT answered();
    }
    if (m_wanted != chord) // another was chosen meanwhile
        bind();
}

void PortalKeyTaps::end()
{
    m_held.clear();
    m_bound.reset();
    m_portal.closeSession(std::exchange(m_session, QString()));
}

/// The desktop took the shortcut back.
void PortalKeyTaps::closed()
{
    m_session.clear();
    end();
}

void PortalKeyTaps::activated(const QDBusObjectPath &session, const QString &shortcut, qulonglong,
                              const QVariantMap &)
{
    tell(KeyEventType::keyDown, session, shortcut);
}

void PortalKeyTaps::deactivated(const QDBusObjectPath &session, const QString &shortcut, qulonglong,
                                const QVariantMap &)
{
    tell(KeyEventType::keyUp, session, shortcut);
}

/// A key that is held is told of again and again.
void PortalKeyTaps::tell(KeyEventType type, const QDBusObjectPath &session, const QString &shortcut)
{
    if (!m_tap || !m_bound || session.path() != m_session)
        return;
    const bool isDown = type == KeyEventType::keyDown;
    const QString held = std::exchange(m_held, isDown ? shortcut : QString());
    for (const auto &[action, chord] :
         {std::pair(u"toggle"_s, *m_bound), std::pair(u"cancel"_s, cancelOf(*m_bound))}) {
        if (shortcut == idOf(action, chord))
            m_tap->tell(type, chord, isDown && held == shortcut);
    }
}
