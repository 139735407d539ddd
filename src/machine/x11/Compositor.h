#pragma once

#include <QObject>

#include <xcb/xcb.h>

class X11Connection;

/// Whether something composes the screen out of its windows, so that they may be translucent. That something
/// comes and goes while the desktop runs.
class Compositor final : public QObject
{
    Q_OBJECT
public:
    explicit Compositor(X11Connection &connection);

    bool isRunning() const { return m_isRunning; }

Q_SIGNALS:
    void changed();

private:
    void handle(const xcb_generic_event_t &event);

    X11Connection &m_connection;
    xcb_atom_t m_selection; ///< owned by the compositor of the first screen
    uint8_t m_selectionNotify = 0;
    bool m_isRunning = false;
};
