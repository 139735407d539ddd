#include "machine/x11/WindowKeys.h"

#include "base/KeyTap.h"
#include "machine/desktop/KeyPositions.h"

#include <QCoreApplication>
#include <QHash>
#include <QKeyEvent>

#include <algorithm>
#include <array>
#include <numeric>

#include <xkbcommon/xkbcommon-keysyms.h>

namespace {

// The places of the logo keys, as the X server numbers them.
constexpr std::array<quint32, 2> logoKeys{133, 134};

quint64 flagOfKey(const QKeyEvent &key)
{
    switch (key.nativeVirtualKey()) {
    case XKB_KEY_Super_L:
    case XKB_KEY_Super_R:
        return KeyFlags::fn;
    case XKB_KEY_ISO_Level3_Shift:
    case XKB_KEY_Mode_switch:
        return KeyFlags::command;
    case XKB_KEY_Alt_L:
    case XKB_KEY_Alt_R:
        return KeyFlags::option;
    case XKB_KEY_Meta_L:
    case XKB_KEY_Meta_R: // Alt with Shift held, or the logo keys where they are set to it
        return std::ranges::count(logoKeys, key.nativeScanCode()) > 0 ? KeyFlags::fn : KeyFlags::option;
    case XKB_KEY_Control_L:
    case XKB_KEY_Control_R:
        return KeyFlags::control;
    case XKB_KEY_Shift_L:
    case XKB_KEY_Shift_R:
        return KeyFlags::shift;
    default:
        return 0;
    }
}

quint64 flagsOf(Qt::KeyboardModifiers modifiers)
{
    return (modifiers.testFlag(Qt::MetaModifier) ? KeyFlags::fn : 0) |
           (modifiers.testFlag(Qt::GroupSwitchModifier) ? KeyFlags::command : 0) |
           (modifiers.testFlag(Qt::AltModifier) ? KeyFlags::option : 0) |
           (modifiers.testFlag(Qt::ControlModifier) ? KeyFlags::control : 0) |
           (modifiers.testFlag(Qt::ShiftModifier) ? KeyFlags::shift : 0);
}

class WindowKeyMonitor final : public QObject, public LocalKeyMonitor
{
public:
    explicit WindowKeyMonitor(LocalKeys::Handler handler) : m_handler(std::move(handler))
    {
        QCoreApplication::instance()->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        switch (event->type()) {
        case QEvent::ShortcutOverride: // a key that a menu or a button would take arrives as a press instead
            event->accept();
            return true;
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
            // A window hands its keys on to the item in it.
            return watched->isWindowType() && judge(*static_cast<QKeyEvent *>(event));
        default:
            return false;
        }
    }

private:
    bool judge(const QKeyEvent &key)
    {
        const bool isPress = key.type() == QEvent::KeyPress;
        if (key.isAutoRepeat())
            return true;
        if (const quint64 flag = flagOfKey(key)) {
            if (isPress)
                m_held.insert(key.nativeScanCode(), flag);
            else
                m_held.remove(key.nativeScanCode());
            // copied: it may destroy this monitor
            const LocalKeys::Handler handler = m_handler;
            return handler({.type = LocalKeyEventType::flagsChanged, .flags = held()});
        }
        const qint64 keyCode = key.nativeScanCode() < 256
                                   ? KeyPositions::keyCode(static_cast<uint8_t>(key.nativeScanCode()))
                                   : -1;
        if (!isPress || keyCode < 0)
            return false;
        const LocalKeys::Handler handler = m_handler;
        return handler({.type = LocalKeyEventType::keyDown,
                        .keyCode = keyCode,
                        .flags = held() | flagsOf(key.modifiers())});
    }

    /// What the modifier keys pressed since the beginning give; the others are told by the key press.
    quint64 held() const { return std::accumulate(m_held.begin(), m_held.end(), quint64(0), std::bit_or()); }

    LocalKeys::Handler m_handler;
    QHash<quint32, quint64> m_held; ///< flag by key
};

} // namespace

std::unique_ptr<LocalKeyMonitor> WindowKeys::addMonitor(Handler handler)
{
    if (!m_fnTakesControl)
        return std::make_unique<WindowKeyMonitor>(std::move(handler));
    return std::make_unique<WindowKeyMonitor>([handler = std::move(handler)](LocalKeyEvent event) {
        if (event.flags & KeyFlags::fn)
            event.flags &= ~KeyFlags::control;
        return handler(event);
    });
}
