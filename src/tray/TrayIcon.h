#pragma once

#include "base/AccessibilityTrust.h"
#include "base/FlowState.h"
#include "tray/StatusNotifierItem.h"
#include "tray/TrayHost.h"
#include "tray/TrayMenu.h"

#include <QImage>
#include <QList>
#include <QObject>
#include <QPoint>
#include <QString>
#include <QSystemTrayIcon>

#include <functional>
#include <memory>

class FlowController;
class MenuView;

/// The program's symbol in a panel.
namespace StateIcon {

/// The name of the symbolic icon for the state, which panels draw in the colour of their text.
QString nameOf(FlowState state);

/// The same for panels that look up no names, in every size that they ask for. What colour a panel has is not
/// known to us: its own has a contrast of 3.4 and more against white and against a dark grey.
QList<QImage> of(FlowState state);

} // namespace StateIcon

/// The program in the panel: a symbol for its state, and its menu.
///
/// A StatusNotifierItem where a panel shows them, else an icon by the older system tray protocol, which
/// waits by itself for a tray to appear. Panels may come, go and start again.
class TrayIcon final : public QObject
{
    Q_OBJECT
public:
    /// The icons' folder is a theme path: it holds `hicolor`.
    TrayIcon(const FlowController &flow, MenuView &menu, const QString &iconsFolder,
             std::function<void()> activate);
    ~TrayIcon() override;

    /// Begins to show, and goes on as panels come and go.
    void show();

    /// By what the icon is shown.
    Checkup checkup() const;

private:
    void choose();
    void makeFallback();
    void showMenu(QPoint place);
    TrayMenu &ownMenu();
    void showState();
    void scheduleMenu();
    void updateMenu();

    const FlowController &m_flow;
    MenuView &m_view;
    std::function<void()> m_activate;
    QString m_iconsFolder;
    TrayHost m_host;
    std::unique_ptr<StatusNotifierItem> m_item;
    std::unique_ptr<TrayMenu> m_menu; // where no panel draws it
    std::unique_ptr<QSystemTrayIcon> m_fallback;
    bool m_updateIsDue = false;
};
