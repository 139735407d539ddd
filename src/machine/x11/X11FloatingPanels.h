#pragma once

#include "base/FloatingPanels.h"

class X11Connection;

/// The floating panels of an X11 desktop.
///
/// A Wayland desktop gives an ordinary program only windows that take the keyboard and stand where the
/// desktop likes; there notifications say what a panel would show.
class X11FloatingPanels final : public FloatingPanels
{
public:
    explicit X11FloatingPanels(X11Connection &connection) : m_connection(connection) {}

    std::unique_ptr<FloatingPanel> create(PanelContent &content) override;

private:
    X11Connection &m_connection;
};
