#include "tray/TrayIcon.h"

#include "app/FlowController.h"
#include "app/MenuView.h"
#include "tray/StateIcon.h"

#include <QDBusConnection>

using namespace Qt::StringLiterals;

namespace {

const QString watcherName = u"org.kde.StatusNotifierWatcher"_s;

} // namespace

TrayIcon::TrayIcon(const FlowController &flow, MenuView &menu) : m_flow(flow), m_view(menu)
{
    connect(&m_view, &MenuView::changed, this, &TrayIcon::scheduleUpdate);
}

TrayIcon::~TrayIcon() = default;

void TrayIcon::show()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected()) {
        m_watcher.setConnection(bus);
        m_watcher.addWatchedService(watcherName);
        connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &TrayIcon::install);
        // A watcher may be there before the panel that shows what it watches.
        bus.connect(watcherName, u"/StatusNotifierWatcher"_s, watcherName, u"StatusNotifierHostRegistered"_s,
                    this, SLOT(install()));
    }
    install();
}

// Which protocol an icon speaks is decided when it is made.
void TrayIcon::install()
{
    m_icon.reset();
    m_shownState.reset();
    m_icon = std::make_unique<QSystemTrayIcon>();
    m_icon->setContextMenu(&m_menu.menu());
    update();
    m_icon->show();
}

void TrayIcon::scheduleUpdate()
{
    if (std::exchange(m_updateIsDue, true))
        return;
    QMetaObject::invokeMethod(this, &TrayIcon::update, Qt::QueuedConnection);
}

void TrayIcon::update()
{
    m_updateIsDue = false;
    if (!m_icon)
        return;
    const QList<MenuEntry> entries = m_view.entries();
    m_menu.show(entries);
    if (m_shownState == m_flow.state())
        return;
    m_shownState = m_flow.state();
    m_icon->setIcon(StateIcon::of(m_flow.state()));
    m_icon->setToolTip(MenuView::stateLine(m_flow.state()));
}
