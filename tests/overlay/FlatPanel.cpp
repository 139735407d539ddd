#include "overlay/FlatPanel.h"

#include "platform/PanelContent.h"

#include <QPainter>

namespace {

class FlatPanel final : public FloatingPanel
{
public:
    explicit FlatPanel(FlatPanels &desktop) : m_desktop(desktop) {}

    std::optional<QRect> visibleFrame() const override { return m_desktop.visibleFrame; }
    bool reducesMotion() const override { return m_desktop.reducesMotion; }
    void show(const QRect &frame, double) override
    {
        m_desktop.frame = frame;
        m_desktop.isShown = true;
    }
    void hide() override { m_desktop.isShown = false; }
    void update(const QRect &) override { ++m_desktop.updates; }
    void announce(const QString &text) override { m_desktop.announcements.append(text); }

private:
    FlatPanels &m_desktop;
};

} // namespace

std::unique_ptr<FloatingPanel> FlatPanels::create(PanelContent &panelContent)
{
    content = &panelContent;
    return std::make_unique<FlatPanel>(*this);
}

QImage FlatPanels::picture(const QColor &ground, double scale) const
{
    QImage image((frame.size().grownBy({6, 6, 6, 6}).toSizeF() * scale).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(ground);
    QPainter painter(&image);
    painter.translate(6, 6);
    content->paint(painter);
    return image;
}
