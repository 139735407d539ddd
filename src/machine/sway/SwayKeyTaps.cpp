#include "machine/sway/SwayKeyTaps.h"

#include "machine/desktop/KeyPositions.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <span>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(log, "com.sayvane.app.hotkey", QtInfoMsg)

// The messages of sway-ipc(7): "i3-ipc", the payload's length, its type, in the machine's own byte order.
constexpr QByteArrayView magic = "i3-ipc";
constexpr qsizetype headerSize = 14;
constexpr quint32 runCommand = 0;
constexpr quint32 subscribe = 2;
constexpr quint32 workspaceEvent = 0x80000000;
constexpr quint32 bindingEvent = 0x80000005;
constexpr quint32 payloadLimit = 1024 * 1024; // nothing that is told here is larger

QByteArray keysOf(const KeyChord &chord)
{
    QByteArrayList keys;
    for (const auto &[flag, name] :
         {std::pair(KeyFlags::shift, "Shift"), std::pair(KeyFlags::control, "Ctrl"),
          std::pair(KeyFlags::option, "Mod1"), std::pair(KeyFlags::fn, "Mod4"),
          std::pair(KeyFlags::command, "Mod5")}) {
        if (chord.flags & flag)
            keys.append(name);
    }
    keys.append(QByteArray::number(KeyPositions::xKeycode(chord.keyCode)));
    return keys.join('+');
}

QByteArray nameOf(const KeyChord &chord)
{
    return "nop sayvane " + keysOf(chord);
}

/// For the mode that is the ordinary one, whichever is in use.
QByteArray unbinding(const KeyChord &chord)
{
    return "mode \"default\" unbindcode " + keysOf(chord);
}

} // namespace

class SwayKeyTaps::Tap final : public KeyTap
{
public:
    Tap(SwayKeyTaps &taps, Handler handler) : m_taps(taps), m_handler(std::move(handler))
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

    void tell(const KeyChord &chord) const
    {
        m_handler({.type = KeyEventType::keyDown, .keyCode = chord.keyCode, .flags = chord.flags});
        m_handler({.type = KeyEventType::keyUp, .keyCode = chord.keyCode, .flags = chord.flags});
    }

private:
    SwayKeyTaps &m_taps;
    Handler m_handler;
};

SwayKeyTaps::SwayKeyTaps()
{
    const QByteArray path = qgetenv("SWAYSOCK");
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    if (path.isEmpty() || path.size() >= qsizetype(sizeof address.sun_path))
        return;
    std::memcpy(address.sun_path, path.constData(), size_t(path.size()));
    m_socket = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (m_socket < 0 ||
        ::connect(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
        close();
        return;
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_socket, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &SwayKeyTaps::read);
    send(subscribe, R"(["binding","workspace"])");
}

SwayKeyTaps::~SwayKeyTaps()
{
    watch({});
    close();
}

void SwayKeyTaps::close()
{
    if (m_notifier)
        m_notifier.release()->deleteLater(); // it may be the one that is calling
    if (const int socket = std::exchange(m_socket, -1); socket >= 0)
        ::close(socket);
}

std::unique_ptr<KeyTap> SwayKeyTaps::install(std::span<const KeyChord> chords, Handler handler)
{
    if (!isOpen() || m_tap)
        return nullptr;
    auto tap = std::make_unique<Tap>(*this, std::move(handler));
    tap->watch(chords);
    return tap;
}

void SwayKeyTaps::watch(const QList<KeyChord> &chords)
{
    guard(chords);
    for (const KeyChord &chord : std::as_const(m_bound)) {
        if (!chords.contains(chord))
            send(runCommand, unbinding(chord));
    }
    for (const KeyChord &chord : chords) {
        if (!m_bound.contains(chord))
            bind(chord);
    }
    m_bound = chords;
}

/// Who lets go of them after a crash is there before they are bound.
void SwayKeyTaps::guard(const QList<KeyChord> &chords)
{
    QList<KeyChord> guarded = m_guarded;
    for (const KeyChord &chord : chords) {
        if (!guarded.contains(chord))
            guarded.append(chord);
    }
    if (guarded == m_guarded || !isOpen())
        return;
    QByteArrayList letGo;
    for (const KeyChord &chord : std::as_const(guarded))
        letGo.append(unbinding(chord));
    m_guard = std::make_unique<Guard>(u"swaymsg -q '%1'"_s.arg(QString::fromLatin1(letGo.join("; "))));
    m_guarded = guarded;
}

void SwayKeyTaps::bind(const KeyChord &chord)
{
    send(runCommand,
         "mode \"default\" bindcode --no-warn --no-repeat " + keysOf(chord) + ' ' + nameOf(chord));
}

void SwayKeyTaps::send(quint32 type, const QByteArray &payload)
{
    if (m_socket < 0)
        return;
    QByteArray message = magic.toByteArray();
    const auto length = static_cast<quint32>(payload.size());
    message.append(reinterpret_cast<const char *>(&length), sizeof length);
    message.append(reinterpret_cast<const char *>(&type), sizeof type);
    message.append(payload);
    // A few hundred bytes; a socket that does not take them has nobody behind it.
    if (::send(m_socket, message.constData(), size_t(message.size()), MSG_NOSIGNAL) != message.size())
        close();
}

void SwayKeyTaps::read()
{
    char bytes[4096];
    const ssize_t count = recv(m_socket, bytes, sizeof bytes, 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count <= 0)
        return close(); // sway has gone
    m_received.append(bytes, count);
    while (m_received.size() >= headerSize) {
        quint32 length = 0;
        quint32 type = 0;
        std::memcpy(&length, m_received.constData() + magic.size(), sizeof length);
        std::memcpy(&type, m_received.constData() + magic.size() + sizeof length, sizeof type);
        if (!m_received.startsWith(magic) || length > payloadLimit)
            return close();
        if (m_received.size() < headerSize + length)
            return;
        const QByteArray payload = m_received.mid(headerSize, length);
        m_received.remove(0, headerSize + length);
        take(type, payload);
    }
}

void SwayKeyTaps::take(quint32 type, const QByteArray &payload)
{
    const QJsonDocument document = QJsonDocument::fromJson(payload);
    if (type == bindingEvent) {
        const QByteArray command = document[u"binding"][u"command"].toString().toLatin1();
        const auto it = std::ranges::find(std::as_const(m_bound), command, nameOf);
        if (m_tap && it != m_bound.cend())
            m_tap->tell(*it);
    } else if (type == workspaceEvent && document[u"change"] == u"reload"_s) {
        for (const KeyChord &chord : std::as_const(m_bound))
            bind(chord);
    } else if (type == runCommand && payload.contains("\"success\": false")) {
        qCWarning(log) << "sway refused a binding:"
                       << payload.first(std::min(payload.size(), qsizetype(200)));
    }
}
