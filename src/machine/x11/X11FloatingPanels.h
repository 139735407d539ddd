#pragma once

#include "base/FloatingPanels.h"

class X11Connection;

/// The floating panels of an X11 desktop; none where the program's windows are not on one.
class X11FloatingPanels final : public FloatingPanels
{
public:
    explicit X11FloatingPanels(X11Connection &connection) : m_connection(connection) {}

    std::unique_ptr<FloatingPanel> create(PanelContent &content) override;

private:
    X11Connection &m_connection;
};
