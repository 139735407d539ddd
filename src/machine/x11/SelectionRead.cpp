#include "machine/x11/SelectionRead.h"

#include "machine/x11/X11Connection.h"

#include <QSet>

#include <algorithm>
#include <array>
#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr qsizetype byteLimit = 64 * 1024 * 1024; // in all

// More at a time gains nothing; less leaves a busy owner little to do once we have given up.
constexpr std::ptrdiff_t askedAtATime = 4;

// An owner may still answer after we stopped listening; until then the window must exist.
constexpr auto lateAnswers = 10s;

/// Names in the list of formats that are questions or commands to the owner and not contents.
bool isContents(const QByteArray &name)
{
    static constexpr std::array<const char *, 18> others{
        "TARGETS",          "TIMESTAMP",       "MULTIPLE",   "SAVE_TARGETS",  "DELETE",
        "INSERT_SELECTION", "INSERT_PROPERTY", "LENGTH",     "CLIENT_WINDOW", "HOST_NAME",
        "OWNER_OS",         "PROCESS",         "TASK",       "USER",          "CHARACTER_POSITION",
        "COLUMN_NUMBER",    "LINE_NUMBER",     "LIST_LENGTH"};
    return !name.isEmpty() && std::ranges::none_of(others, [&](const char *other) { return name == other; });
}

} // namespace

SelectionRead::SelectionRead(X11Connection &connection, xcb_atom_t selection)
    : m_connection(connection),
      m_selection(selection),
      m_targets(connection.atoms()["TARGETS"]),
      m_incremental(connection.atoms()["INCR"]),
      m_window(connection.createWindow(XCB_EVENT_MASK_PROPERTY_CHANGE))
{
    m_limit.setSingleShot(true);
    connect(&m_limit, &QTimer::timeout, this, &SelectionRead::finish);
    connect(&connection, &X11Connection::eventReceived, this,
            [this](const xcb_generic_event_t *event) { handle(*event); });
    connect(&connection, &X11Connection::lost, this, &SelectionRead::finish);
}

SelectionRead::~SelectionRead()
{
    if (!isUnderWay()) {
        xcb_destroy_window(m_connection.xcb(), m_window);
        return;
    }
    QTimer::singleShot(lateAnswers, &m_connection, [xcb = m_connection.xcb(), window = m_window] {
        xcb_destroy_window(xcb, window);
        xcb_flush(xcb);
    });
}

void SelectionRead::start(std::chrono::milliseconds limit)
{
    m_limit.start(m_connection.isOpen() ? limit : 0ms);
    ask(m_targets);
    m_firstRequest = m_lastRequest;
    m_connection.flush();
}

void SelectionRead::askNoMore()
{
    m_isClosed = true;
    std::erase_if(m_formats, [](const Format &format) { return format.progress == Progress::waiting; });
    if (!m_isListed || !isUnderWay())
        finish();
}

void SelectionRead::changedHands(uint32_t request, xcb_window_t owner)
{
    const bool isBefore = static_cast<int32_t>(request - m_firstRequest) < 0;
    const bool isAfter = m_isClosed && static_cast<int32_t>(request - m_lastRequest) >= 0;
    if (m_isFinished || isBefore || isAfter)
        return;
    if (owner != XCB_WINDOW_NONE)
        m_formats.clear();
    finish();
}

SelectionContents SelectionRead::contents() const
{
    SelectionContents contents;
    for (const Format &format : m_formats) {
        if (format.progress == Progress::whole)
            contents.append(format.data);
    }
    return contents;
}

void SelectionRead::handle(const xcb_generic_event_t &event)
{
    if (m_isFinished)
        return;
    const uint8_t type = event.response_type & 0x7f;
    if (type == XCB_SELECTION_NOTIFY) {
        const auto &notify = reinterpret_cast<const xcb_selection_notify_event_t &>(event);
        if (notify.requestor == m_window && notify.selection == m_selection)
            answered(notify);
    } else if (type == XCB_PROPERTY_NOTIFY) {
        const auto &notify = reinterpret_cast<const xcb_property_notify_event_t &>(event);
        if (notify.window != m_window || notify.state != XCB_PROPERTY_NEW_VALUE)
            return;
        if (Format *format = find(notify.atom, Progress::arriving))
            pieceArrived(*format);
    }
}

void SelectionRead::answered(const xcb_selection_notify_event_t &notify)
{
    const bool isOffered = notify.property != XCB_ATOM_NONE;
    if (notify.target == m_targets && !m_isListed) {
        listArrived(isOffered);
    } else if (Format *format = find(notify.target, Progress::asked)) {
        if (isOffered)
            formatArrived(*format);
        else
            format->progress = Progress::missing;
    }
    proceed();
}

void SelectionRead::listArrived(bool isOffered)
{
    m_isListed = true;
    QList<uint32_t> targets;
    if (isOffered)
        targets = WindowProperty::take(m_connection, m_window, m_targets, 65536).values();
    if (targets.isEmpty()) // an owner from before the conventions, or none
        targets = m_connection.atoms().of({"UTF8_STRING", "STRING"});
    const QList<QByteArray> names = m_connection.atoms().names(targets);
    QSet<xcb_atom_t> seen;
    for (qsizetype i = 0; i < targets.size(); ++i) {
        if (isContents(names[i]) && !seen.contains(targets[i]))
            m_formats.push_back(
                {.data = {.target = targets[i], .type = XCB_ATOM_NONE, .format = 8, .bytes = {}}});
        seen.insert(targets[i]);
    }
}

void SelectionRead::formatArrived(Format &format)
{
    const WindowProperty value =
        WindowProperty::take(m_connection, m_window, format.data.target, byteLimit - m_bytes);
    if (value.type == m_incremental) { // taking it was the word to begin
        format.progress = Progress::arriving;
        return;
    }
    format.data.type = value.type;
    format.data.format = value.format;
    keep(format, value);
    if (format.progress != Progress::missing)
        format.progress = Progress::whole;
}

void SelectionRead::pieceArrived(Format &format)
{
    const WindowProperty value =
        WindowProperty::take(m_connection, m_window, format.data.target, byteLimit - m_bytes);
    if (value.bytes.isEmpty() && value.isWhole) {
        format.progress = Progress::whole;
    } else {
        format.data.type = value.type;
        format.data.format = value.format;
        keep(format, value);
    }
    proceed();
}

void SelectionRead::keep(Format &format, const WindowProperty &value)
{
    // Units of 32 bits are numbers of things inside this server, and mean nothing later.
    if (!value.isWhole || value.format == 32 || value.type == XCB_ATOM_NONE) {
        m_bytes -= format.data.bytes.size();
        format.data.bytes.clear();
        format.progress = Progress::missing;
        return;
    }
    format.data.bytes.append(value.bytes);
    m_bytes += value.bytes.size();
}

void SelectionRead::ask(xcb_atom_t target)
{
    // The conventions want the time of a user's action, which a dictation does not have.
    const auto cookie =
        xcb_convert_selection(m_connection.xcb(), m_window, m_selection, target, target, XCB_CURRENT_TIME);
    m_lastRequest = cookie.sequence;
}

void SelectionRead::proceed()
{
    auto pending = std::ranges::count_if(m_formats, [](const Format &format) {
        return format.progress == Progress::asked || format.progress == Progress::arriving;
    });
    for (Format &format : m_formats) {
        if (format.progress != Progress::waiting || pending >= askedAtATime)
            continue;
        format.progress = Progress::asked;
        ask(format.data.target);
        ++pending;
    }
    m_connection.flush();
    if (pending == 0)
        finish();
}

void SelectionRead::finish()
{
    if (m_isFinished)
        return;
    m_isFinished = true;
    m_limit.stop();
    Q_EMIT finished();
}

SelectionRead::Format *SelectionRead::find(xcb_atom_t target, Progress progress)
{
    const auto format = std::ranges::find_if(m_formats, [&](const Format &candidate) {
        return candidate.data.target == target && candidate.progress == progress;
    });
    return format == m_formats.end() ? nullptr : &*format;
}

bool SelectionRead::isUnderWay() const
{
    return !m_isListed || std::ranges::any_of(m_formats, [](const Format &format) {
        return format.progress == Progress::asked || format.progress == Progress::arriving;
    });
}
