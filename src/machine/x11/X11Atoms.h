#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>

#include <xcb/xcb.h>

class X11Connection;

/// The numbers that the X server gives to names, each asked for once. Without a server the numbers are our
/// own, so that names can still be told apart.
class X11Atoms
{
public:
    explicit X11Atoms(X11Connection &connection);

    xcb_atom_t operator[](const QByteArray &name);
    /// Several names in one round trip.
    QList<xcb_atom_t> of(const QList<QByteArray> &names);
    /// The names of several numbers, in one round trip; empty for a number that is none.
    QList<QByteArray> names(const QList<xcb_atom_t> &atoms);

private:
    void remember(xcb_atom_t atom, const QByteArray &name);

    X11Connection &m_connection;
    QHash<QByteArray, xcb_atom_t> m_atoms;
    QHash<xcb_atom_t, QByteArray> m_names;
};
