#include "machine/hyprland/HyprlandKeyTaps.h"

#include "machine/desktop/KeyPositions.h"
#include "machine/wayland/WaylandConnection.h"

#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <span>
#include <utility>

#include <hyprland-global-shortcuts-v1.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(log, "com.sayvane.app.hotkey", QtInfoMsg)

constexpr qint64 escapeKeyCode = 53;
// The compositor answers at once; one that does not has no shortcut for us.
constexpr int patience = 300; // milliseconds
constexpr qsizetype answerLimit = 4 * 1024 * 1024;
constexpr qsizetype lineLimit = 64 * 1024;

// Its numbers and names for the modifiers.
struct Modifier
{
    quint64 flag;
    int mask;
    const char *name;
};
constexpr Modifier modifiers[] = {{KeyFlags::shift, 1, "SHIFT"},
                                  {KeyFlags::control, 4, "CTRL"},
                                  {KeyFlags::option, 8, "ALT"},
                                  {KeyFlags::fn, 64, "SUPER"},
                                  {KeyFlags::command, 128, "MOD5"}};

int maskOf(const KeyChord &chord)
{
    int mask = 0;
    for (const Modifier &modifier : modifiers)
        mask |= chord.flags & modifier.flag ? modifier.mask : 0;
    return mask;
}

QByteArray namesOf(const KeyChord &chord, char between)
{
    QByteArrayList names;
    for (const Modifier &modifier : modifiers) {
        if (chord.flags & modifier.flag)
            names.append(modifier.name);
    }
    return names.join(between);
}

/// A key by its place, whatever the layout makes of it.
QByteArray codeOf(const KeyChord &chord)
{
    return "code:" + QByteArray::number(KeyPositions::xKeycode(chord.keyCode));
}

QByteArray nameOf(const KeyChord &chord)
{
    return chord.keyCode == escapeKeyCode ? "app.sayvane.Sayvane:cancel" : "app.sayvane.Sayvane:toggle";
}

/// As its newer configuration writes keys.
QByteArray luaKeysOf(const KeyChord &chord)
{
    const QByteArray names = namesOf(chord, '+').replace("+", " + ");
    return '"' + (names.isEmpty() ? codeOf(chord) : names + " + " + codeOf(chord)) + '"';
}

int connected(const QByteArray &path)
{
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    if (path.size() >= qsizetype(sizeof address.sun_path))
        return -1;
    std::memcpy(address.sun_path, path.constData(), size_t(path.size()));
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor >= 0 &&
        ::connect(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
        return descriptor;
    if (descriptor >= 0)
        ::close(descriptor);
    return -1;
}

} // namespace

class HyprlandKeyTaps::Tap final : public KeyTap
{
public:
    Tap(HyprlandKeyTaps &taps, Handler handler) : m_taps(taps), m_handler(std::move(handler))
    {
        taps.m_tap = this;
    }
    ~Tap() override
    {
        m_taps.m_tap = nullptr;
        m_taps.watch({});
    }
    Q_DISABLE_COPY_MOVE(Tap)

    bool watch(std::span<const KeyChord> chords) override
    {
        m_taps.watch(QList<KeyChord>(chords.begin(), chords.end()));
        return m_taps.isOpen();
    }
    void enable() override {}

    void tell(KeyEventType type, const KeyChord &chord) const
    {
        m_handler({.type = type, .keyCode = chord.keyCode, .flags = chord.flags});
    }

private:
    HyprlandKeyTaps &m_taps;
    Handler m_handler;
};

/// What a key is bound to.
class HyprlandKeyTaps::Shortcut
{
public:
    Shortcut(HyprlandKeyTaps &taps, const char *id, const char *description)
        : m_taps(taps),
          m_isEscape(std::strcmp(id, "cancel") == 0),
          m_shortcut(hyprland_global_shortcuts_manager_v1_register_shortcut(
              taps.m_manager, id, "app.sayvane.Sayvane", description, ""))
    {
        static constexpr hyprland_global_shortcut_v1_listener listener{
            .pressed = [](void *self, hyprland_global_shortcut_v1 *, uint32_t, uint32_t,
                          uint32_t) { static_cast<Shortcut *>(self)->tell(KeyEventType::keyDown); },
            .released = [](void *self, hyprland_global_shortcut_v1 *, uint32_t, uint32_t,
                           uint32_t) { static_cast<Shortcut *>(self)->tell(KeyEventType::keyUp); }};
        hyprland_global_shortcut_v1_add_listener(m_shortcut, &listener, this);
    }
    ~Shortcut() { hyprland_global_shortcut_v1_destroy(m_shortcut); }
    Q_DISABLE_COPY_MOVE(Shortcut)

private:
    void tell(KeyEventType type) { m_taps.pressed(m_isEscape, type); }

    HyprlandKeyTaps &m_taps;
    bool m_isEscape;
    hyprland_global_shortcut_v1 *m_shortcut;
};

HyprlandKeyTaps::HyprlandKeyTaps(WaylandConnection &connection)
{
    const QByteArray signature = qgetenv("HYPRLAND_INSTANCE_SIGNATURE");
    if (signature.isEmpty() || !connection.offers(hyprland_global_shortcuts_manager_v1_interface))
        return;
    m_folder = qgetenv("XDG_RUNTIME_DIR") + "/hypr/" + signature;
    m_socket = connected(m_folder + "/.socket2.sock");
    if (m_socket < 0)
        return;
    m_manager = connection.bind<hyprland_global_shortcuts_manager_v1>(
        hyprland_global_shortcuts_manager_v1_interface, 1);
    connect(&connection, &WaylandConnection::lost, this, &HyprlandKeyTaps::close);
    m_events = std::make_unique<QSocketNotifier>(m_socket, QSocketNotifier::Read);
    connect(m_events.get(), &QSocketNotifier::activated, this, &HyprlandKeyTaps::readEvents);
    m_shortcuts.push_back(std::make_unique<Shortcut>(*this, "toggle", "Start or stop dictation"));
    m_shortcuts.push_back(std::make_unique<Shortcut>(*this, "cancel", "Cancel the dictation"));
    connection.flush();
}

HyprlandKeyTaps::~HyprlandKeyTaps()
{
    watch({});
    close();
    m_shortcuts.clear();
    if (m_manager)
        hyprland_global_shortcuts_manager_v1_destroy(m_manager);
}

void HyprlandKeyTaps::close()
{
    if (m_events)
        m_events.release()->deleteLater(); // it may be the one that is calling
    if (const int socket = std::exchange(m_socket, -1); socket >= 0)
        ::close(socket);
}

std::unique_ptr<KeyTap> HyprlandKeyTaps::install(std::span<const KeyChord> chords, Handler handler)
{
    if (!isOpen() || m_tap || chords.empty())
        return nullptr;
    const QJsonDocument system = QJsonDocument::fromJson(ask("j/systeminfo"));
    const QJsonDocument binds = QJsonDocument::fromJson(ask("j/binds"));
    if (!system.isObject() || !binds.isArray()) // it did not answer in time; this is tried again
        return nullptr;
    m_takesLua = system[u"configProvider"] == u"lua"_s;
    m_binds = binds.array();
    m_holder = holderOf(chords.front());
    if (!m_holder.isEmpty())
        return nullptr;
    auto tap = std::make_unique<Tap>(*this, std::move(handler));
    tap->watch(chords);
    return tap;
}

/// One request to a connection, and the answer until its end.
QByteArray HyprlandKeyTaps::ask(const QByteArray &request) const
{
    const int descriptor = connected(m_folder + "/.socket.sock");
    QByteArray answer;
    if (descriptor < 0)
        return answer;
    const QDeadlineTimer end(patience);
    bool isWhole = false;
    if (::send(descriptor, request.constData(), size_t(request.size()), MSG_NOSIGNAL) == request.size()) {
        pollfd readable{.fd = descriptor, .events = POLLIN, .revents = 0};
        while (!isWhole && answer.size() < answerLimit && poll(&readable, 1, int(end.remainingTime())) > 0) {
            char bytes[16384];
            const ssize_t count = recv(descriptor, bytes, sizeof bytes, 0);
            isWhole = count <= 0;
            answer.append(bytes, std::max<ssize_t>(count, 0));
        }
    }
    ::close(descriptor);
    return isWhole ? answer : QByteArray();
}

/// Nobody waits for what it says to it.
void HyprlandKeyTaps::tell(const QByteArray &request) const
{
    const int descriptor = connected(m_folder + "/.socket.sock");
    if (descriptor < 0)
        return;
    if (::send(descriptor, request.constData(), size_t(request.size()), MSG_NOSIGNAL) != request.size())
        qCWarning(log, "Hyprland did not take a binding.");
    ::close(descriptor);
}

QString HyprlandKeyTaps::holderOf(const KeyChord &chord) const
{
    for (const QJsonValue bind : m_binds) {
        const QString argument = bind[u"arg"].toString();
        const QByteArray key = bind[u"key"].toString().toUtf8();
        const bool isKey = bind[u"keycode"].toInt() == KeyPositions::xKeycode(chord.keyCode) ||
                           xkb_keysym_from_name(key.constData(), XKB_KEYSYM_CASE_INSENSITIVE) ==
                               KeyPositions::symbol(chord.keyCode);
        if (isKey && bind[u"modmask"].toInt() == maskOf(chord) && bind[u"submap"].toString().isEmpty() &&
            argument != QString::fromLatin1(nameOf(chord)))
            return u"Hyprland (%1 %2)"_s.arg(bind[u"dispatcher"].toString(), argument).trimmed();
    }
    return {};
}

void HyprlandKeyTaps::watch(const QList<KeyChord> &chords)
{
    QList<KeyChord> wanted;
    for (const KeyChord &chord : chords) {
        // To let go of a key would let go of the person's binding too.
        if (m_bound.contains(chord) || holderOf(chord).isEmpty())
            wanted.append(chord);
    }
    const QList<KeyChord> before = std::exchange(m_bound, wanted);
    guard();
    for (const KeyChord &chord : before) {
        if (!wanted.contains(chord))
            tell(unbinding(chord));
    }
    for (const KeyChord &chord : std::as_const(wanted)) {
        if (!before.contains(chord))
            bind(chord);
    }
}

void HyprlandKeyTaps::bind(const KeyChord &chord) const
{
    tell(m_takesLua
             ? "eval hl.bind(" + luaKeysOf(chord) + ", hl.dsp.global(\"" + nameOf(chord) + "\"))"
             : "keyword bind " + namesOf(chord, ' ') + ',' + codeOf(chord) + ",global," + nameOf(chord));
}

QByteArray HyprlandKeyTaps::unbinding(const KeyChord &chord) const
{
    return m_takesLua ? "eval hl.unbind(" + luaKeysOf(chord) + ")"
                      : "keyword unbind " + namesOf(chord, ' ') + ',' + codeOf(chord);
}

/// Who lets go of them after a crash is there before they are bound.
void HyprlandKeyTaps::guard()
{
    QList<KeyChord> guarded = m_guarded;
    for (const KeyChord &chord : std::as_const(m_bound)) {
        if (!guarded.contains(chord))
            guarded.append(chord);
    }
    if (guarded == m_guarded || !isOpen())
        return;
    QStringList letGo;
    for (const KeyChord &chord : std::as_const(guarded))
        letGo.append(u"hyprctl %1"_s.arg(QString::fromLatin1(unbinding(chord).replace("eval ", "eval '"))) +
                     (m_takesLua ? u"'"_s : QString()));
    m_guard = std::make_unique<Guard>(letGo.join(u"; "_s));
    m_guarded = guarded;
}

void HyprlandKeyTaps::pressed(bool isEscape, KeyEventType type)
{
    const auto it = std::ranges::find(std::as_const(m_bound), isEscape,
                                      [](const KeyChord &chord) { return chord.keyCode == escapeKeyCode; });
    if (m_tap && it != m_bound.cend())
        m_tap->tell(type, *it);
}

/// A configuration that is read again knows nothing of us.
void HyprlandKeyTaps::readEvents()
{
    char bytes[4096];
    const ssize_t count = recv(m_socket, bytes, sizeof bytes, 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count <= 0)
        return close();
    m_received.append(bytes, count);
    for (qsizetype end = 0; (end = m_received.indexOf('\n')) >= 0; m_received.remove(0, end + 1)) {
        if (!m_received.startsWith("configreloaded>>"))
            continue;
        for (const KeyChord &chord : std::as_const(m_bound))
            bind(chord);
    }
    if (m_received.size() > lineLimit)
        m_received.clear();
}
