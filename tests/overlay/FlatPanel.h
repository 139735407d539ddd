#pragma once

#include "base/FloatingPanel.h"

#include <QImage>
#include <QPainter>
#include <QStringList>

/// A desktop whose only panel is a picture.
struct FlatPanels final : FloatingPanels
{
    struct Panel final : FloatingPanel
    {
        explicit Panel(FlatPanels &panels) : desktop(panels) {}
        std::optional<QRect> visibleFrame() const override { return desktop.visibleFrame; }
        bool reducesMotion() const override { return desktop.reducesMotion; }
        void show(const QRect &place, double) override
        {
            desktop.frame = place;
            desktop.isShown = true;
        }
        void hide() override { desktop.isShown = false; }
        void update(const QRect &) override { ++desktop.updates; }
        void announce(const QString &text) override { desktop.announcements.append(text); }

        FlatPanels &desktop;
    };

    std::unique_ptr<FloatingPanel> create(PanelContent &panelContent) override
    {
        content = &panelContent;
        return std::make_unique<Panel>(*this);
    }
    /// What the panel looks like on that ground, in pixels.
    QImage picture(const QColor &ground, double scale) const
    {
        QImage image((frame.size().grownBy({6, 6, 6, 6}).toSizeF() * scale).toSize(), QImage::Format_RGB32);
        image.setDevicePixelRatio(scale);
        image.fill(ground);
        QPainter painter(&image);
        painter.translate(6, 6);
        content->paint(painter);
        return image;
    }

    PanelContent *content = nullptr;
    std::optional<QRect> visibleFrame;
    bool reducesMotion = false;
    bool isShown = false;
    QRect frame;
    int updates = 0;
    QStringList announcements;
};
