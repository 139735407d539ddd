#pragma once

#include "machine/x11/X11Connection.h"

#include <QRect>

/// Another program's yellow window.
class OtherWindow
{
public:
    /// Mapped on return, though not yet managed.
    explicit OtherWindow(const QRect &geometry, const QByteArray &state = {});
    /// A dock along the lower end of the screen.
    static OtherWindow dock(int height);

    bool hasFocus();
    /// The window at that place that a click would reach, as a child of the root.
    xcb_window_t windowAt(const QPoint &place);
    QList<uint32_t> managedWindows();

private:
    OtherWindow();
    void create(const QRect &geometry);
    void setProperty(const QByteArray &name, xcb_atom_t type, const QList<uint32_t> &values);

    std::unique_ptr<X11Connection> m_connection;
    xcb_window_t m_window;
};
