#pragma once

#include "tray/StatusNotifierItem.h"
#include "tray/TrayHost.h"
#include "tray/TrayMenu.h"
#include "values/FlowState.h"

#include <QObject>
#include <QSystemTrayIcon>

#include <functional>
#include <memory>

class FlowController;
class MenuView;

/// The program in the panel: a symbol for its state, and its menu.
///
/// A StatusNotifierItem where a panel shows them, else an icon by the older system tray protocol, which
/// waits by itself for a tray to appear. Panels may come, go and start again.
class TrayIcon final : public QObject
{
    Q_OBJECT
public:
    TrayIcon(const FlowController &flow, MenuView &menu, std::function<void()> activate);
    ~TrayIcon() override;

    /// Begins to show, and goes on as panels come and go.
    void show();

private:
    /// By the older protocol.
    struct Fallback
    {
        TrayMenu menu;
        QSystemTrayIcon icon;
    };

    void choose();
    void showState();
    void scheduleMenu();
    void updateMenu();

    const FlowController &m_flow;
    MenuView &m_view;
    std::function<void()> m_activate;
    TrayHost m_host;
    std::unique_ptr<StatusNotifierItem> m_item;
    std::unique_ptr<Fallback> m_fallback;
    bool m_updateIsDue = false;
};
