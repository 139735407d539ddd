#pragma once

#include "machine/x11/SelectionRead.h"

#include <QByteArray>
#include <QObject>

#include <atomic>

#include <xcb/xfixes.h>

class SelectionSender;
class X11Connection;

/// One selection, such as CLIPBOARD: counts its changes, and while we own it, answers the programs that ask
/// for its contents (Inter-Client Communication Conventions, 2).
class SelectionOwner final : public QObject
{
    Q_OBJECT
public:
    SelectionOwner(X11Connection &connection, SelectionSender &sender, const QByteArray &selection);

    /// Takes the selection with these contents; empty contents leave it without an owner.
    void own(SelectionContents contents);

    // These three may be asked for from any thread.
    bool isOwner() const { return m_isOwner; }
    /// Grows with every change by anyone. A change of ours counts when it is made; one of another program
    /// counts when we hear of it, unless ours has already replaced it.
    qint64 changeCount() const { return m_changeCount; }
    /// Grows whenever our contents are asked for. The mark for clipboard managers is not of them.
    qint64 readCount() const { return m_readCount; }
    const SelectionContents &contents() const { return m_contents; }
    xcb_window_t window() const { return m_window; }
    xcb_atom_t selection() const { return m_selection; }

Q_SIGNALS:
    /// Another window owns it, or none, since the server had seen that request of ours and not the next.
    void changedHands(uint32_t request, xcb_window_t owner);

private:
    void handle(const xcb_generic_event_t &event);
    void ownerChanged(uint32_t sequence, const xcb_xfixes_selection_notify_event_t &notify);
    void answer(const xcb_selection_request_event_t &request);
    bool convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    bool convertMultiple(xcb_window_t requestor, xcb_atom_t property);
    QByteArray targets() const;

    X11Connection &m_connection;
    SelectionSender &m_sender;
    xcb_atom_t m_selection;
    xcb_window_t m_window;
    uint8_t m_ownerNotify = 0;
    SelectionContents m_contents;
    std::atomic<bool> m_isOwner = false;
    std::atomic<qint64> m_changeCount = 0;
    std::atomic<qint64> m_readCount = 0;
    uint32_t m_lastTake = 0; // the number of the request
    bool m_isTakeUnconfirmed = false;
    xcb_timestamp_t m_ownedSince = XCB_CURRENT_TIME;
};
