#include "tray/TrayIcon.h"

#include "app/FlowController.h"
#include "app/MenuView.h"
#include "tray/StateIcon.h"

#include <QGuiApplication>
#include <QPixmap>

#include <utility>

TrayIcon::TrayIcon(const FlowController &flow, MenuView &menu, std::function<void()> activate)
    : m_flow(flow),
      m_view(menu),
      m_activate(std::move(activate))
{
    connect(&m_flow, &FlowController::stateChanged, this, &TrayIcon::showState);
    connect(&m_view, &MenuView::changed, this, &TrayIcon::scheduleMenu);
    connect(&m_host, &TrayHost::changed, this, &TrayIcon::choose);
}

TrayIcon::~TrayIcon() = default;

void TrayIcon::show()
{
    m_host.follow();
}

// Qt decides once for the whole process which protocol its own icon speaks, when it makes the first one:
// it is made only while no panel shows items, and then speaks the older protocol.
void TrayIcon::choose()
{
    if (m_host.isThere()) {
        m_fallback.reset();
        if (!m_item)
            m_item = std::make_unique<StatusNotifierItem>([this] { return m_view.entries(); }, m_activate);
        showState();
        m_item->offer();
        return;
    }
    m_item.reset();
    // Wayland knows no older protocol.
    if (m_fallback || QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
        return;
    m_fallback = std::make_unique<Fallback>();
    m_fallback->icon.setContextMenu(&m_fallback->menu.menu());
    connect(&m_fallback->icon, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger)
                    m_activate();
            });
    updateMenu();
    showState();
    m_fallback->icon.show();
}

void TrayIcon::showState()
{
    const QString line = MenuView::stateLine(m_flow.state());
    const QList<QImage> images = StateIcon::of(m_flow.state());
    if (m_item) {
        QList<ItemPixmap> icon;
        for (const QImage &image : images)
            icon.append(ItemPixmap::of(image));
        m_item->setIcon(icon, line);
    }
    if (m_fallback) {
        QIcon icon;
        for (const QImage &image : images)
            icon.addPixmap(QPixmap::fromImage(image));
        m_fallback->icon.setIcon(icon);
        m_fallback->icon.setToolTip(line);
    }
}

void TrayIcon::scheduleMenu()
{
    if (!std::exchange(m_updateIsDue, true))
        QMetaObject::invokeMethod(this, &TrayIcon::updateMenu, Qt::QueuedConnection);
}

void TrayIcon::updateMenu()
{
    m_updateIsDue = false;
    if (m_item)
        m_item->menu().announce();
    if (m_fallback)
        m_fallback->menu.show(m_view.entries());
}
