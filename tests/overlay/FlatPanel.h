#pragma once

#include "platform/FloatingPanels.h"

#include <QImage>
#include <QStringList>

/// A desktop whose only panel is a picture.
class FlatPanels final : public FloatingPanels
{
public:
    std::unique_ptr<FloatingPanel> create(PanelContent &panelContent) override;
    /// What the panel looks like on that ground, in pixels.
    QImage picture(const QColor &ground, double scale) const;

    PanelContent *content = nullptr;
    std::optional<QRect> visibleFrame = QRect(0, 0, 1440, 900);
    bool reducesMotion = false;
    bool isShown = false;
    QRect frame;
    int updates = 0;
    QStringList announcements;
};
