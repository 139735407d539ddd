#pragma once

#include "machine/x11/SelectionRead.h"

#include <QObject>
#include <QTimer>

#include <vector>

class X11Connection;

/// Delivers selection data to the programs that asked: small data at once, large data piece by piece as they
/// take it (the INCR protocol of the Inter-Client Communication Conventions, 2.7.2).
class SelectionSender final : public QObject
{
    Q_OBJECT
public:
    explicit SelectionSender(X11Connection &connection);

    void send(xcb_window_t requestor, xcb_atom_t property, const SelectionData &data);
    bool isIdle() const { return m_transfers.empty(); }

private:
    struct Transfer
    {
        xcb_window_t requestor;
        xcb_atom_t property;
        SelectionData data;
        qsizetype sent = 0;
    };

    void handle(const xcb_generic_event_t &event);
    void sendNextPiece(xcb_window_t requestor, xcb_atom_t property);
    void forget(xcb_window_t requestor);

    X11Connection &m_connection;
    std::vector<Transfer> m_transfers;
    QTimer m_patience;
};
