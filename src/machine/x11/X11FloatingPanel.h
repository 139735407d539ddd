#pragma once

#include "base/FloatingPanel.h"
#include "machine/x11/Compositor.h"
#include "machine/x11/PanelOutline.h"
#include "machine/x11/PanelWindow.h"

class PanelContent;
class QScreen;

/// A floating panel on an X11 desktop.
class X11FloatingPanel final : public QObject, public FloatingPanel
{
    Q_OBJECT
public:
    X11FloatingPanel(PanelContent &content, X11Connection &connection);

    std::optional<QRect> visibleFrame() const override;
    bool reducesMotion() const override;
    void show(const QRect &frame, double cornerRadius) override;
    void hide() override { m_window.hide(); }
    void update(const QRect &part) override { m_window.updatePanel(part); }
    void announce(const QString &text) override;

private:
    void prepare();
    void setProperty(const QByteArray &name, xcb_atom_t type, const QList<uint32_t> &values);
    void watch(QScreen *screen);
    void screensChanged();

    PanelContent &m_content;
    X11Connection &m_connection;
    Compositor m_compositor;
    PanelWindow m_window;
    PanelOutline m_outline;
};
