#pragma once

#include "base/LocalKeys.h"

/// The keys that reach the program's windows, seen before the windows and their shortcuts see them.
///
/// A key is told by its physical position: keys without a place in the ANSI layout and repeats of a held key
/// are never reported. The modifiers are named as for the global shortcut: Fn is Super, Command is AltGr.
class WindowKeys final : public LocalKeys
{
public:
    /// Whether Ctrl belongs to the logo key, and is none of its own beside it.
    explicit WindowKeys(bool fnTakesControl) : m_fnTakesControl(fnTakesControl) {}

    std::unique_ptr<LocalKeyMonitor> addMonitor(Handler handler) override;

private:
    bool m_fnTakesControl;
};
