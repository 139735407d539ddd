#pragma once

#include <QByteArray>
#include <QList>

#include <xcb/xproto.h>

/// What a selection is delivered as in one of its formats.
struct SelectionData
{
    xcb_atom_t target = XCB_ATOM_NONE; ///< the format that was asked for
    xcb_atom_t type = XCB_ATOM_NONE;   ///< the format that came; the same but for a few old names
    uint8_t format = 8;                ///< the size of a unit in bits: 8, 16 or 32
    QByteArray bytes;
};

/// Everything a selection is offered as, in its owner's order.
using SelectionContents = QList<SelectionData>;
