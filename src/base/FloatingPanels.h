#pragma once

#include "base/FloatingPanel.h"

#include <memory>

class PanelContent;

/// Where floating panels come from.
class FloatingPanels
{
public:
    virtual ~FloatingPanels() = default;

    /// A panel that is not shown yet; the content outlives it. Null where the desktop lets no window float
    /// without taking the keyboard.
    virtual std::unique_ptr<FloatingPanel> create(PanelContent &content) = 0;
};
