#include "tray/TrayIcon.h"

#include "dictation/FlowController.h"
#include "icons/IconImage.h"
#include "tray/MenuView.h"

#include <QColor>
#include <QFile>
#include <QGuiApplication>
#include <QPixmap>
#include <QWindow>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QColor colorOf(FlowState state)
{
    return state == FlowState::recording ? QColor(0xE5, 0x48, 0x4D) : QColor(0x8A, 0x8A, 0x90);
}

bool isWayland()
{
    return QGuiApplication::platformName().startsWith("wayland"_L1);
}

} // namespace

QString StateIcon::nameOf(FlowState state)
{
    switch (state) {
    case FlowState::idle:
        return u"app.sayvane.Sayvane-symbolic"_s;
    case FlowState::recording:
        return u"app.sayvane.Sayvane-recording-symbolic"_s;
    case FlowState::processing:
        return u"app.sayvane.Sayvane-processing-symbolic"_s;
    }
    Q_UNREACHABLE();
}

QList<QImage> StateIcon::of(FlowState state)
{
    QList<QImage> images;
    for (const int pixels : {16, 22, 24, 32, 44, 48, 64})
        images.append(IconImage::render(MenuView::symbolFor(state), pixels, colorOf(state)));
    return images;
}

TrayIcon::TrayIcon(const FlowController &flow, MenuView &menu, const QString &iconsFolder,
                   std::function<void()> activate)
    : m_flow(flow),
      m_view(menu),
      m_activate(std::move(activate)),
      m_iconsFolder(iconsFolder)
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

Checkup TrayIcon::checkup() const
{
    const bool isOlder = m_fallback && QSystemTrayIcon::isSystemTrayAvailable();
    const QString means = m_host.isThere() ? u"StatusNotifierItem"_s : isOlder ? u"system tray"_s : QString();
    return Checkup::of(
        u"tray"_s, means, !means.isEmpty(),
        u"No panel shows icons here; in GNOME the extension AppIndicator does. Starting Sayvane "
        "again opens its window."_s);
}

void TrayIcon::choose()
{
    if (m_host.isThere()) {
        m_fallback.reset();
        m_menu.reset();
        if (!m_item)
            m_item = std::make_unique<StatusNotifierItem>(
                StatusNotifierItem::Needs{.entries = [this] { return m_view.entries(); },
                                          .activate = m_activate,
                                          .showMenu = [this](QPoint place) { showMenu(place); },
                                          .iconThemePath = m_iconsFolder});
        showState();
        m_item->offer();
        return;
    }
    if (m_item)
        m_item->withdraw();
    // Wayland knows no older protocol.
    if (!m_fallback && !isWayland())
        makeFallback();
}

// Qt decides once for the whole process which protocol its own icon speaks, when it makes the first one:
// it is made only while no panel shows items, and then speaks the older protocol.
void TrayIcon::makeFallback()
{
    m_fallback = std::make_unique<QSystemTrayIcon>();
    m_fallback->setContextMenu(&ownMenu().menu());
    connect(m_fallback.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger)
                    m_activate();
            });
    showState();
    m_fallback->show();
}

TrayMenu &TrayIcon::ownMenu()
{
    if (m_menu)
        return *m_menu;
    m_menu = std::make_unique<TrayMenu>();
    // On Wayland nothing may place a window by itself, and a popup gets the keyboard from a click on a window
    // of ours alone: the menu is a window among others, which goes when the keyboard goes elsewhere. Its
    // submenus are popups.
    if (isWayland()) {
        QMenu &menu = m_menu->menu();
        menu.setWindowFlags(Qt::Tool);
        menu.setWindowTitle(QStringLiteral("Sayvane"));
        connect(qGuiApp, &QGuiApplication::focusWindowChanged, &menu, [&menu](const QWindow *window) {
            if (window != menu.windowHandle() && (!window || window->type() != Qt::Popup))
                menu.close();
        });
    }
    updateMenu();
    return *m_menu;
}

void TrayIcon::showMenu(QPoint place)
{
    QMenu &menu = ownMenu().menu();
    if (isWayland())
        menu.setFixedSize(menu.sizeHint()); // such a window floats above those that compositors tile
    menu.popup(place);
}

void TrayIcon::showState()
{
    const QString line = MenuView::stateLine(m_flow.state());
    const QList<QImage> images = StateIcon::of(m_flow.state());
    if (m_item) {
        StatusNotifierItem::Picture picture{.description = line};
        const QString name = StateIcon::nameOf(m_flow.state());
        // A name without a file would show nothing.
        if (QFile::exists(m_iconsFolder + u"/hicolor/symbolic/apps/"_s + name + u".svg"_s))
            picture.name = name;
        for (const QImage &image : images)
            picture.pixmaps.append(ItemPixmap::of(image));
        m_item->show(picture);
    }
    if (m_fallback) {
        QIcon icon;
        for (const QImage &image : images)
            icon.addPixmap(QPixmap::fromImage(image));
        m_fallback->setIcon(icon);
        m_fallback->setToolTip(line);
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
    if (m_menu)
        m_menu->show(m_view.entries());
}
