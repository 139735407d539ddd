#pragma once

#include <memory>

#include "machine/x11/SelectionRead.h"
#include "machine/x11/X11Connection.h"

/// Another program that owns CLIPBOARD and fails those who ask for it.
class UnrulyOwner
{
public:
    enum class Manner {
        slow,           ///< needs half a second for four pictures, which stand between two texts
        silent,         ///< answers nothing
        halfSilent,     ///< lists two formats and delivers the first
        diesHalfway,    ///< announces two formats, delivers one, and dies amid the other
        neverEnds,      ///< sends one format piece by piece without end, after one that is fine
        refusesTargets, ///< knows no list of formats, only UTF8_STRING
    };

    explicit UnrulyOwner(Manner manner);

    /// Whether it was asked for all the pictures.
    bool isAsked() const { return m_asked == 4; }

private:
    void handle(const xcb_generic_event_t &event);
    void answer(const xcb_selection_request_event_t &request);
    void put(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, uint8_t format, const QByteArray &bytes);

    void notify(const xcb_selection_request_event_t &request, xcb_atom_t property);

    Manner m_manner;
    int m_asked = 0;
    std::unique_ptr<X11Connection> m_connection;
    xcb_window_t m_window;
    xcb_atom_t m_good;
    xcb_atom_t m_bad;
    QList<xcb_atom_t> m_formats;
};
