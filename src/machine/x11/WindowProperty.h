#pragma once

#include <QByteArray>
#include <QList>

#include <xcb/xproto.h>

class X11Connection;

/// The value of a property of a window; without a type when there is none, or none that may be read.
struct WindowProperty
{
    xcb_atom_t type = XCB_ATOM_NONE;
    uint8_t format = 0; ///< the size of a unit: 8, 16 or 32 bits
    QByteArray bytes;
    bool isWhole = true; ///< false when the value was longer than asked for

    static WindowProperty read(X11Connection &connection, xcb_window_t window, xcb_atom_t property,
                               qsizetype maxBytes = 65536);
    /// Reads a property of a window of our own and deletes it, which tells its writer to go on. A value that
    /// is longer than asked for stays.
    static WindowProperty take(X11Connection &connection, xcb_window_t window, xcb_atom_t property,
                               qsizetype maxBytes);

    /// The units of a 32-bit property.
    QList<uint32_t> values() const;
};
