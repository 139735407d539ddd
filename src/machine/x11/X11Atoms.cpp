#include "machine/x11/X11Atoms.h"

#include "machine/x11/X11Connection.h"
#include "machine/x11/XcbReply.h"

namespace {

// The server numbers from 1 and uses 29 bits.
constexpr xcb_atom_t firstOwnAtom = 0x80000000;

} // namespace

X11Atoms::X11Atoms(X11Connection &connection) : m_connection(connection)
{
}

xcb_atom_t X11Atoms::operator[](const QByteArray &name)
{
    return of({name}).constFirst();
}

QList<xcb_atom_t> X11Atoms::of(const QList<QByteArray> &names)
{
    xcb_connection_t *xcb = m_connection.xcb();
    QHash<QByteArray, xcb_intern_atom_cookie_t> asked;
    for (const QByteArray &name : names) {
        if (!m_atoms.contains(name) && !asked.contains(name))
            asked.insert(name, xcb_intern_atom(xcb, false, static_cast<uint16_t>(name.size()), name.data()));
    }
    for (auto it = asked.cbegin(); it != asked.cend(); ++it) {
        if (const auto reply = adopt(xcb_intern_atom_reply(xcb, it.value(), nullptr)))
            remember(reply->atom, it.key());
    }
    QList<xcb_atom_t> atoms;
    for (const QByteArray &name : names) {
        if (!m_atoms.contains(name))
            remember(firstOwnAtom + static_cast<xcb_atom_t>(m_atoms.size()), name);
        atoms.append(m_atoms.value(name));
    }
    return atoms;
}

QList<QByteArray> X11Atoms::names(const QList<xcb_atom_t> &atoms)
{
    xcb_connection_t *xcb = m_connection.xcb();
    QHash<xcb_atom_t, xcb_get_atom_name_cookie_t> asked;
    for (const xcb_atom_t atom : atoms) {
        if (!m_names.contains(atom) && !asked.contains(atom))
            asked.insert(atom, xcb_get_atom_name(xcb, atom));
    }
    for (auto it = asked.cbegin(); it != asked.cend(); ++it) {
        xcb_generic_error_t *error = nullptr;
        const auto reply = adopt(xcb_get_atom_name_reply(xcb, it.value(), &error));
        const auto refusal = adopt(error);
        if (reply)
            remember(it.key(), QByteArray(xcb_get_atom_name_name(reply.get()),
                                          xcb_get_atom_name_name_length(reply.get())));
    }
    QList<QByteArray> names;
    for (const xcb_atom_t atom : atoms)
        names.append(m_names.value(atom));
    return names;
}

void X11Atoms::remember(xcb_atom_t atom, const QByteArray &name)
{
    m_atoms.insert(name, atom);
    m_names.insert(atom, name);
}
