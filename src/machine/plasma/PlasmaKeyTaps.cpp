#include "machine/plasma/PlasmaKeyTaps.h"

#include "machine/desktop/KeyPositions.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QLoggingCategory>
#include <QStringList>

#include <algorithm>
#include <optional>
#include <utility>

#include <xkbcommon/xkbcommon-keysyms.h>

using namespace Qt::StringLiterals;

/// One of the desktop's shortcuts as it tells of them: (ssssssaiai). The names are shown to people in every
/// second place.
struct PlasmaShortcut
{
    QStringList names;
    QList<int> keys, defaults;
};
Q_DECLARE_METATYPE(PlasmaShortcut)

QDBusArgument &operator<<(QDBusArgument &argument, const PlasmaShortcut &shortcut)
{
    argument.beginStructure();
    for (const QString &name : shortcut.names)
        argument << name;
    argument << shortcut.keys << shortcut.defaults;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, PlasmaShortcut &shortcut)
{
    argument.beginStructure();
    for (int i = 0; i < 6; ++i) {
        QString name;
        argument >> name;
        shortcut.names.append(name);
    }
    argument >> shortcut.keys >> shortcut.defaults;
    argument.endStructure();
    return argument;
}

/// A sequence of up to four keys, of which we use one: (ai).
struct PlasmaKeySequence
{
    QList<int> keys;
};
Q_DECLARE_METATYPE(PlasmaKeySequence)

QDBusArgument &operator<<(QDBusArgument &argument, const PlasmaKeySequence &sequence)
{
    argument.beginStructure();
    argument << sequence.keys;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, PlasmaKeySequence &sequence)
{
    argument.beginStructure();
    argument >> sequence.keys;
    argument.endStructure();
    return argument;
}

namespace {

Q_LOGGING_CATEGORY(log, "com.sayvane.app.hotkey", QtInfoMsg)

const QString service = u"org.kde.kglobalaccel"_s;
const QString path = u"/kglobalaccel"_s;
const QString interface = u"org.kde.KGlobalAccel"_s;
const QString componentInterface = u"org.kde.kglobalaccel.Component"_s;
const QString component = u"sayvane"_s;

// The compositor answers at once; one that does not has no shortcut for us.
constexpr int patience = 300; // milliseconds
// Ours is the key that the user chose in our settings: present, and not what was stored here.
constexpr uint setPresent = 2 | 4;

constexpr qint64 escapeKeyCode = 53;

constexpr std::pair<quint64, Qt::KeyboardModifier> modifiers[] = {{KeyFlags::fn, Qt::MetaModifier},
                                                                  {KeyFlags::control, Qt::ControlModifier},
                                                                  {KeyFlags::option, Qt::AltModifier},
                                                                  {KeyFlags::shift, Qt::ShiftModifier}};

QString nameOf(const KeyChord &chord)
{
    return chord.keyCode == escapeKeyCode ? u"cancel"_s : u"toggle"_s;
}

/// By what the desktop tells our shortcuts apart, and what its settings show.
QStringList idOf(const QString &action)
{
    return {component, action, u"Sayvane"_s,
            action == u"cancel"_s ? u"Cancel the dictation"_s : u"Start or stop dictation"_s};
}

/// The key as Qt numbers it; 0 for one that has no number there.
int keyOf(const KeyChord &chord)
{
    const xkb_keysym_t symbol = KeyPositions::symbol(chord.keyCode);
    int key = 0;
    if (symbol >= XKB_KEY_space && symbol <= XKB_KEY_asciitilde)
        key = QChar(char16_t(symbol)).toUpper().unicode();
    else if (symbol >= XKB_KEY_F1 && symbol <= XKB_KEY_F35)
        key = Qt::Key_F1 + int(symbol - XKB_KEY_F1);
    static constexpr std::pair<xkb_keysym_t, int> others[] = {
        {XKB_KEY_Escape, Qt::Key_Escape},  {XKB_KEY_Return, Qt::Key_Return},
        {XKB_KEY_Tab, Qt::Key_Tab},        {XKB_KEY_BackSpace, Qt::Key_Backspace},
        {XKB_KEY_Delete, Qt::Key_Delete},  {XKB_KEY_Insert, Qt::Key_Insert},
        {XKB_KEY_Home, Qt::Key_Home},      {XKB_KEY_End, Qt::Key_End},
        {XKB_KEY_Page_Up, Qt::Key_PageUp}, {XKB_KEY_Page_Down, Qt::Key_PageDown},
        {XKB_KEY_Left, Qt::Key_Left},      {XKB_KEY_Right, Qt::Key_Right},
        {XKB_KEY_Up, Qt::Key_Up},          {XKB_KEY_Down, Qt::Key_Down}};
    for (const auto &[known, number] : others) {
        if (symbol == known)
            key = number;
    }
    if (key == 0)
        return 0;
    for (const auto &[flag, modifier] : modifiers) {
        if (chord.flags & flag)
            key |= int(modifier);
    }
    return key;
}

/// The other way round; nothing for a key that we have no place for.
std::optional<KeyChord> chordOf(int key)
{
    KeyChord chord;
    for (const auto &[flag, modifier] : modifiers) {
        if (key & int(modifier))
            chord.flags |= flag;
    }
    for (chord.keyCode = 0; chord.keyCode < 128; ++chord.keyCode) {
        if (keyOf(chord) == key)
            return chord;
    }
    return {};
}

PlasmaKeySequence sequenceOf(const KeyChord &chord)
{
    return {{keyOf(chord), 0, 0, 0}};
}

QDBusMessage call(const QString &method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    return message;
}

QDBusMessage ask(const QString &method, const QVariantList &arguments)
{
    return QDBusConnection::sessionBus().call(call(method, arguments), QDBus::Block, patience);
}

/// Whose the key is, such as “KWin: Switch to Next Keyboard Layout”.
QString holderOf(int key)
{
    const QVariant found = ask(u"getGlobalShortcutsByKey"_s, {key}).arguments().value(0);
    for (const PlasmaShortcut &each : qdbus_cast<QList<PlasmaShortcut>>(found)) {
        if (each.names.value(2) != component)
            return u"“%1: %2”"_s.arg(each.names.value(3), each.names.value(1));
    }
    return QCoreApplication::translate("PlasmaKeyTaps", "Another program");
}

} // namespace

class PlasmaKeyTaps::Tap final : public KeyTap
{
public:
    Tap(PlasmaKeyTaps &taps, Handler handler) : m_taps(taps), m_handler(std::move(handler))
    {
        taps.m_tap = this;
    }
    ~Tap() override
    {
        m_taps.m_tap = nullptr;
        m_taps.watch({});
    }
    Q_DISABLE_COPY_MOVE(Tap)

    bool watch(std::span<const KeyChord> chords) override { return m_taps.watch(chords); }
    void enable() override {}

    void tell(KeyEventType type, const KeyChord &chord, bool isAutorepeat = false) const
    {
        m_handler(
            {.type = type, .keyCode = chord.keyCode, .flags = chord.flags, .isAutorepeat = isAutorepeat});
    }

private:
    PlasmaKeyTaps &m_taps;
    Handler m_handler;
};

PlasmaKeyTaps::PlasmaKeyTaps()
    : m_watcher(u"org.kde.KWin"_s, QDBusConnection::sessionBus(),
                QDBusServiceWatcher::WatchForRegistration | QDBusServiceWatcher::WatchForUnregistration)
{
    connect(&m_watcher, &QDBusServiceWatcher::serviceRegistered, this, [this] { m_isOpen = true; });
    connect(&m_watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] { m_isOpen = false; });
    const QDBusConnection bus = QDBusConnection::sessionBus();
    m_isOpen = bus.isConnected() && bus.interface()->isServiceRegistered(u"org.kde.KWin"_s);
    qDBusRegisterMetaType<PlasmaKeySequence>();
    qDBusRegisterMetaType<QList<PlasmaKeySequence>>();
    qDBusRegisterMetaType<PlasmaShortcut>();
    qDBusRegisterMetaType<QList<PlasmaShortcut>>();
}

PlasmaKeyTaps::~PlasmaKeyTaps()
{
    watch({});
}

std::unique_ptr<KeyTap> PlasmaKeyTaps::install(std::span<const KeyChord> chords, Handler handler)
{
    if (m_tap || !isOpen())
        return nullptr;
    auto tap = std::make_unique<Tap>(*this, std::move(handler));
    return watch(chords) ? std::move(tap) : nullptr;
}

bool PlasmaKeyTaps::remove()
{
    bool wasThere = false;
    for (const QString &action : {u"toggle"_s, u"cancel"_s})
        wasThere |= isOpen() && ask(u"unregister"_s, {component, action}).arguments().value(0).toBool();
    return wasThere;
}

std::chrono::milliseconds PlasmaKeyTaps::restless() const
{
    // It is told of the first key that is let go; the others follow.
    constexpr std::chrono::milliseconds lettingGo(150);
    if (std::ranges::any_of(m_actions, &Action::isHeld))
        return lettingGo;
    const auto since = std::chrono::steady_clock::now() - m_released;
    return std::max(std::chrono::milliseconds(0),
                    lettingGo - std::chrono::duration_cast<std::chrono::milliseconds>(since));
}

bool PlasmaKeyTaps::watch(std::span<const KeyChord> chords)
{
    QList<Action> wanted;
    for (const KeyChord &chord : chords) {
        const QString name = nameOf(chord);
        auto it = std::ranges::find(wanted, name, &Action::name);
        if (it == wanted.end())
            it = wanted.insert(wanted.end(), Action{.name = name, .chords = {}});
        it->chords.append(chord);
    }
    for (const Action &action : std::as_const(m_actions)) {
        if (std::ranges::none_of(wanted, [&](const Action &each) { return each.name == action.name; }))
            letGo(action);
    }
    bool isGranted = true;
    for (Action &action : wanted) {
        const auto it = std::ranges::find(m_actions, action);
        if (it != m_actions.end())
            action.isHeld = it->isHeld;
        else
            isGranted = take(action) && isGranted;
    }
    m_actions = wanted;
    return isGranted;
}

bool PlasmaKeyTaps::take(const Action &action)
{
    if (!m_guard) {
        QStringList letGo;
        for (const QString &name : {u"toggle"_s, u"cancel"_s})
            letGo.append(u"gdbus call --session -d %1 -o %2 -m %3.setInactive \"['%4']\""_s.arg(
                service, path, interface, idOf(name).join(u"','"_s)));
        m_guard = std::make_unique<Guard>(letGo.join(u"; "_s));
    }
    const QStringList id = idOf(action.name);
    QList<PlasmaKeySequence> sequences;
    for (const KeyChord &chord : action.chords)
        sequences.append(sequenceOf(chord));
    const auto keys = QVariant::fromValue(sequences);
    if (action.name == u"cancel"_s) { // the dictation that it ends waits for nobody
        QDBusConnection::sessionBus().send(call(u"doRegister"_s, {id}));
        QDBusConnection::sessionBus().send(call(u"setShortcutKeys"_s, {id, keys, setPresent}));
        return true;
    }
    m_holder.clear();
    ask(u"doRegister"_s, {id});
    const QVariant granted = ask(u"setShortcutKeys"_s, {id, keys, setPresent}).arguments().value(0);
    const auto taken = qdbus_cast<QList<PlasmaKeySequence>>(granted);
    if (taken.isEmpty() || taken.first().keys.value(0) != keyOf(action.chords.first())) {
        m_holder = holderOf(keyOf(action.chords.first()));
        qCWarning(log).noquote() << "The shortcut belongs to" << m_holder;
        letGo(action);
        return false;
    }
    const auto object = ask(u"getComponent"_s, {component}).arguments().value(0).value<QDBusObjectPath>();
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.connect(service, object.path(), componentInterface, u"globalShortcutPressed"_s, this,
                SLOT(pressed(QString, QString, qlonglong)));
    bus.connect(service, object.path(), componentInterface, u"globalShortcutReleased"_s, this,
                SLOT(released(QString, QString, qlonglong)));
    bus.connect(service, path, interface, u"yourShortcutsChanged"_s, this, SLOT(changed(QDBusMessage)));
    return !object.path().isEmpty();
}

/// Told of everybody's shortcuts.
void PlasmaKeyTaps::changed(const QDBusMessage &message)
{
    const QStringList id = message.arguments().value(0).toStringList();
    const auto keys = qdbus_cast<QList<PlasmaKeySequence>>(message.arguments().value(1));
    const auto it = std::ranges::find(m_actions, u"toggle"_s, &Action::name);
    if (id.value(0) != component || id.value(1) != u"toggle"_s || keys.isEmpty() || it == m_actions.end())
        return;
    const auto chord = chordOf(keys.first().keys.value(0));
    const auto listener = m_listener.lock();
    if (chord && listener && *chord != it->chords.first())
        (*listener)(*chord);
}

void PlasmaKeyTaps::letGo(const Action &action)
{
    QDBusConnection::sessionBus().send(call(u"setInactive"_s, {idOf(action.name)}));
}

void PlasmaKeyTaps::pressed(const QString &, const QString &action, qlonglong)
{
    const auto it = std::ranges::find(m_actions, action, &Action::name);
    if (!m_tap || it == m_actions.end())
        return;
    const KeyChord chord = it->chords.first();
    m_tap->tell(KeyEventType::keyDown, chord, std::exchange(it->isHeld, true));
}

void PlasmaKeyTaps::released(const QString &, const QString &action, qlonglong)
{
    const auto it = std::ranges::find(m_actions, action, &Action::name);
    if (!m_tap || it == m_actions.end())
        return;
    it->isHeld = false;
    m_released = std::chrono::steady_clock::now();
    m_tap->tell(KeyEventType::keyUp, it->chords.first());
}
