#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>

#include <xcb/xcb.h>

class X11Connection;

/// The numbers that the X server gives to names, each asked for once.
class X11Atoms
{
public:
    explicit X11Atoms(X11Connection &connection);

    /// The atom of a name; 0 without a server.
    xcb_atom_t operator[](const QByteArray &name);
    /// The atoms of several names, in one round trip.
    QList<xcb_atom_t> of(const QList<QByteArray> &names);
    /// The names of several atoms, in one round trip; empty for a number that is none.
    QList<QByteArray> names(const QList<xcb_atom_t> &atoms);

private:
    void remember(xcb_atom_t atom, const QByteArray &name);

    X11Connection &m_connection;
    QHash<QByteArray, xcb_atom_t> m_atoms;
    QHash<xcb_atom_t, QByteArray> m_names;
};
