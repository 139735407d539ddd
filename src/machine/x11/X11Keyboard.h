#pragma once

#include "machine/x11/ModifierMap.h"

#include <QObject>
#include <QTimer>

#include <bitset>

#include <xcb/xproto.h>

class X11Connection;

/// The keyboard of the X server: its mapping and modifiers, read anew when they change.
class X11Keyboard final : public QObject
{
    Q_OBJECT
public:
    /// The keys by X keycode.
    using Keys = std::bitset<256>;

    explicit X11Keyboard(X11Connection &connection);

    /// Whether the server has the keyboard extension.
    bool isUsable() const { return m_firstXkbEvent != 0; }
    const X11Keymap &keymap() const { return m_keymap; }
    const ModifierMap &modifiers() const { return m_modifiers; }

    /// Asks the server which layout group is active.
    uint32_t group() const;
    /// Asks the server which keys are down.
    Keys keysDown() const;
    /// Asks the server on which of its keyboards this key is down; 0 for none.
    uint8_t deviceHolding(xcb_keycode_t key) const;

Q_SIGNALS:
    /// Another mapping, other modifiers or another keyboard; both are read already.
    void changed();

private:
    void handle(const xcb_generic_event_t &event);
    void read();
    void askForRepeatsWithoutReleases() const;
    void askForChanges() const;

    X11Connection &m_connection;
    uint8_t m_firstXkbEvent = 0;
    X11Keymap m_keymap;
    ModifierMap m_modifiers;
    QTimer m_settling;
};
