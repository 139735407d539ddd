#pragma once

#include "base/KeyPoster.h"
#include "machine/desktop/FocusedObject.h"
#include "machine/wayland/ActiveWindow.h"

#include <QObject>

#include <chrono>
#include <functional>
#include <memory>

class WaylandConnection;

/// Types on a Wayland desktop: by a keyboard of our own (virtual-keyboard), or where KWin permits by its
/// fake-input.
///
/// Command-V is whatever makes the focused program paste: Ctrl+V, Ctrl+Shift+V in terminals. A program that
/// pastes nothing but the PRIMARY selection has it lent for that moment.
class WaylandKeyPoster final : public QObject, public KeyPoster
{
    Q_OBJECT
public:
    /// Offers what is on the clipboard as the PRIMARY selection too.
    using LendToPrimary = std::function<void()>;

    /// How long fingers may still be on the keys of a shortcut; KWin counts what they hold as part of what we
    /// type.
    using Restless = std::function<std::chrono::milliseconds()>;

    WaylandKeyPoster(WaylandConnection &connection, LendToPrimary lendToPrimary, Restless restless);
    ~WaylandKeyPoster() override;
    Q_DISABLE_COPY_MOVE(WaylandKeyPoster)

    /// Whether the compositor lets us type.
    bool isUsable() const { return m_keyboard && !m_isLost; }

    void prepare() override;
    QCoro::Task<bool> post(KeyChord chord, std::function<bool()> mayStill) override;

    class Keyboard;

private:
    WaylandConnection &m_connection;
    LendToPrimary m_lendToPrimary;
    Restless m_restless;
    ActiveWindow m_active;
    FocusedObject m_focus;
    std::unique_ptr<Keyboard> m_keyboard;
    bool m_isLost = false;
};
