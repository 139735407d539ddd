#pragma once

#include "tray/BusMenu.h"
#include "tray/ItemPixmap.h"
#include "tray/ItemToolTip.h"

#include <QDBusObjectPath>
#include <QList>
#include <QObject>

#include <functional>

/// The program in a panel by the StatusNotifierItem protocol of freedesktop.org, in the form that KDE's
/// watcher (org.kde) and all panels use.
class StatusNotifierItem final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category CONSTANT)
    Q_PROPERTY(QString Id READ id CONSTANT)
    Q_PROPERTY(QString Title READ title CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(QString IconName READ iconName CONSTANT)
    Q_PROPERTY(QList<ItemPixmap> IconPixmap READ icon)
    Q_PROPERTY(ItemToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu CONSTANT)
    Q_PROPERTY(QDBusObjectPath Menu READ menuPath CONSTANT)
public:
    StatusNotifierItem(std::function<QList<MenuEntry>()> entries, std::function<void()> activate);
    ~StatusNotifierItem() override;

    /// Offers itself to the watcher that is there.
    void offer();

    BusMenu &menu() { return m_menu; }
    void setIcon(const QList<ItemPixmap> &icon, const QString &toolTip);

public Q_SLOTS:
    /// A panel that shows no menu on a click.
    Q_SCRIPTABLE void Activate(int x, int y);
    Q_SCRIPTABLE void SecondaryActivate(int x, int y);

Q_SIGNALS:
    Q_SCRIPTABLE void NewIcon();
    Q_SCRIPTABLE void NewToolTip();

private:
    static QString category() { return QStringLiteral("ApplicationStatus"); }
    static QString id() { return QStringLiteral("sayvane"); }
    static QString title() { return QStringLiteral("Sayvane"); }
    static QString status() { return QStringLiteral("Active"); }
    static QString iconName() { return {}; }
    static bool itemIsMenu() { return true; }
    static QDBusObjectPath menuPath() { return QDBusObjectPath(QStringLiteral("/MenuBar")); }
    QList<ItemPixmap> icon() const { return m_icon; }
    ItemToolTip toolTip() const { return {.title = m_toolTip}; }

    std::function<void()> m_activate;
    BusMenu m_menu;
    QString m_name;
    QList<ItemPixmap> m_icon;
    QString m_toolTip;
};
