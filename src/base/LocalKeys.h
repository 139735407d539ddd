#pragma once

#include <QtGlobal>

#include <functional>
#include <memory>

/// What a local monitor reports.
enum class LocalKeyEventType : quint32 {
    keyDown = 10,
    flagsChanged = 12,
};

/// A key press made in one of the program's own windows, or a modifier pressed or let go there.
struct LocalKeyEvent
{
    LocalKeyEventType type = LocalKeyEventType::keyDown;
    qint64 keyCode = 0; ///< virtual key code of the ANSI layout; of no account when the flags changed
    quint64 flags = 0;  ///< the modifiers held once the event has happened, as `KeyFlags`
};

/// An installed watch on the keys of the program's windows; destroying it removes the watch.
class LocalKeyMonitor
{
public:
    virtual ~LocalKeyMonitor() = default;
};

/// The keyboard as far as the program's own windows have it.
class LocalKeys
{
public:
    /// Judges an event before its window sees it; true consumes it. It may destroy its monitor.
    using Handler = std::function<bool(const LocalKeyEvent &)>;

    virtual ~LocalKeys() = default;

    virtual std::unique_ptr<LocalKeyMonitor> addMonitor(Handler handler) = 0;
};
