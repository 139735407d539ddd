#pragma once

#include "base/FloatingPanel.h"
#include "machine/x11/PanelWindow.h"

#include <QObject>

#include <xcb/xcb.h>

class PanelContent;
class QScreen;
class X11Connection;

/// Whether something composes the screen out of its windows, so that they may be translucent. That something
/// comes and goes while the desktop runs.
class Compositor final : public QObject
{
    Q_OBJECT
public:
    explicit Compositor(X11Connection &connection);

    bool isRunning() const { return m_isRunning; }

Q_SIGNALS:
    void changed();

private:
    void handle(const xcb_generic_event_t &event);

    X11Connection &m_connection;
    xcb_atom_t m_selection; ///< owned by the compositor of the first screen
    uint8_t m_selectionNotify = 0;
    bool m_isRunning = false;
};

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

/// The floating panels of an X11 desktop.
class X11FloatingPanels final : public FloatingPanels
{
public:
    explicit X11FloatingPanels(X11Connection &connection) : m_connection(connection) {}

    std::unique_ptr<FloatingPanel> create(PanelContent &content) override;

private:
    X11Connection &m_connection;
};
