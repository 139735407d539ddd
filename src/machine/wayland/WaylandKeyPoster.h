#pragma once

#include "base/KeyPoster.h"
#include "machine/desktop/FocusedObject.h"
#include "machine/wayland/ActiveWindow.h"

#include <QObject>

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

    WaylandKeyPoster(WaylandConnection &connection, LendToPrimary lendToPrimary);
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
    ActiveWindow m_active;
    FocusedObject m_focus;
    std::unique_ptr<Keyboard> m_keyboard;
    bool m_isLost = false;
};
