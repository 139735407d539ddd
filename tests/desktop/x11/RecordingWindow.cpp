#include "desktop/x11/RecordingWindow.h"

#include <array>
#include <chrono>

#include <xkbcommon/xkbcommon.h>

using namespace std::chrono_literals;

RecordingWindow::RecordingWindow(const QByteArray &instance, const QByteArray &className)
    : m_keyboard(m_connection),
      m_window(xcb_generate_id(m_connection.xcb()))
{
    QObject::connect(&m_connection, &X11Connection::eventReceived, &m_connection,
                     [this](const xcb_generic_event_t *event) { handle(*event); });
    const uint32_t events = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_FOCUS_CHANGE;
    xcb_create_window(m_connection.xcb(), XCB_COPY_FROM_PARENT, m_window, m_connection.root(), 100, 100, 200, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    const QByteArray wmClass = instance + '\0' + className + '\0';
    xcb_change_property(m_connection.xcb(), XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                        static_cast<uint32_t>(wmClass.size()), wmClass.constData());
    // A window manager that is still starting may forget a window that appears meanwhile.
    do {
        xcb_map_window(m_connection.xcb(), m_window);
    } while (!m_connection.dispatchUntil([this] { return m_isFocused; }, 1s) && m_connection.isOpen());
}

bool RecordingWindow::awaits(const QString &line)
{
    return m_connection.dispatchUntil([&] { return m_log.contains(line); }, 2s);
}

void RecordingWindow::handle(const xcb_generic_event_t &event)
{
    const uint8_t type = event.response_type & 0x7f;
    if (type == XCB_KEY_PRESS || type == XCB_KEY_RELEASE)
        m_log.append(describe(reinterpret_cast<const xcb_key_press_event_t &>(event)));
    // Grabs take the focus for a moment as well, which is nothing of the window's own.
    const auto &focus = reinterpret_cast<const xcb_focus_in_event_t &>(event);
    if ((type == XCB_FOCUS_IN || type == XCB_FOCUS_OUT) && focus.mode == XCB_NOTIFY_MODE_NORMAL)
        m_isFocused = type == XCB_FOCUS_IN;
}

QString RecordingWindow::describe(const xcb_key_press_event_t &event) const
{
    static constexpr std::array<const char *, 8> names{"Shift", "Lock", "Control", "Mod1",
                                                       "Mod2",  "Mod3", "Mod4",    "Mod5"};
    const QList<xkb_keysym_t> symbols = m_keyboard.keymap().symbols(event.detail);
    const int group = (event.state >> 13) & 3;
    std::array<char, 64> name{};
    xkb_keysym_get_name(symbols.value(group, symbols.value(0)), name.data(), name.size());
    const bool isPress = (event.response_type & 0x7f) == XCB_KEY_PRESS;
    QString text = (isPress ? u'+' : u'-') + QString::fromLatin1(name.data());
    for (std::size_t bit = 0; bit < names.size(); ++bit) {
        if (event.state & (1U << bit))
            text += u' ' + QString::fromLatin1(names[bit]);
    }
    return text;
}
