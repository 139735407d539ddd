#pragma once

#include "tray/TrayMenu.h"
#include "values/FlowState.h"

#include <QDBusServiceWatcher>
#include <QObject>
#include <QSystemTrayIcon>

#include <memory>
#include <optional>

class FlowController;
class MenuView;

/// The program in the panel: a symbol for its state, and its menu.
///
/// A StatusNotifierItem (freedesktop.org) where a panel watches for them, else an icon by the older system
/// tray protocol, which waits by itself for a tray to appear. Panels may come, go and start again.
class TrayIcon final : public QObject
{
    Q_OBJECT
public:
    TrayIcon(const FlowController &flow, MenuView &menu);
    ~TrayIcon() override;

    /// Begins to show, and goes on as panels come and go.
    void show();

private Q_SLOTS:
    void install();

private:
    void scheduleUpdate();
    void update();

    const FlowController &m_flow;
    MenuView &m_view;
    TrayMenu m_menu;
    QDBusServiceWatcher m_watcher;
    std::unique_ptr<QSystemTrayIcon> m_icon;
    std::optional<FlowState> m_shownState;
    bool m_updateIsDue = false;
};
