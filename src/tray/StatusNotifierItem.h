#pragma once

#include "tray/BusMenu.h"

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QList>
#include <QMetaType>
#include <QObject>
#include <QPoint>
#include <QString>

#include <functional>

class QImage;

/// One size of an icon as a StatusNotifierItem sends it, (iiay): ARGB with 32 bits in network byte order.
struct ItemPixmap
{
    int width = 0;
    int height = 0;
    QByteArray pixels;

    static ItemPixmap of(const QImage &image);
};
Q_DECLARE_METATYPE(ItemPixmap)

QDBusArgument &operator<<(QDBusArgument &argument, const ItemPixmap &pixmap);
const QDBusArgument &operator>>(const QDBusArgument &argument, ItemPixmap &pixmap);

/// What a panel shows when the pointer rests on an item: (sa(iiay)ss).
struct ItemToolTip
{
    QString iconName;
    QList<ItemPixmap> icon;
    QString title;
    QString text;
};
Q_DECLARE_METATYPE(ItemToolTip)

QDBusArgument &operator<<(QDBusArgument &argument, const ItemToolTip &toolTip);
const QDBusArgument &operator>>(const QDBusArgument &argument, ItemToolTip &toolTip);

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
    Q_PROPERTY(int WindowId READ windowId CONSTANT)
    Q_PROPERTY(QString IconThemePath READ iconThemePath CONSTANT)
    Q_PROPERTY(QDBusObjectPath Menu READ menuPath CONSTANT)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu CONSTANT)
    Q_PROPERTY(QString IconName READ iconName)
    Q_PROPERTY(QList<ItemPixmap> IconPixmap READ iconPixmap)
    Q_PROPERTY(QString IconAccessibleDesc READ description)
    Q_PROPERTY(QString OverlayIconName READ noName CONSTANT)
    Q_PROPERTY(QList<ItemPixmap> OverlayIconPixmap READ noPixmap CONSTANT)
    Q_PROPERTY(QString AttentionIconName READ noName CONSTANT)
    Q_PROPERTY(QList<ItemPixmap> AttentionIconPixmap READ noPixmap CONSTANT)
    Q_PROPERTY(QString AttentionAccessibleDesc READ noName CONSTANT)
    Q_PROPERTY(QString AttentionMovieName READ noName CONSTANT)
    Q_PROPERTY(ItemToolTip ToolTip READ toolTip)
    Q_PROPERTY(QString XAyatanaLabel READ noName CONSTANT)
    Q_PROPERTY(QString XAyatanaLabelGuide READ noName CONSTANT)
    Q_PROPERTY(uint XAyatanaOrderingIndex READ orderingIndex CONSTANT)
public:
    struct Picture
    {
        QString name; ///< of an icon below the theme path; empty for none
        QList<ItemPixmap> pixmaps;
        QString description;
    };
    struct Needs
    {
        std::function<QList<MenuEntry>()> entries;
        std::function<void()> activate;
        std::function<void(QPoint)> showMenu; ///< for panels that draw none
        QString iconThemePath;
    };
    explicit StatusNotifierItem(Needs needs);
    ~StatusNotifierItem() override;

    /// Offers itself to the watcher that is there.
    void offer();
    /// Takes itself off the bus until the next offer. What panels know of it stays true.
    void withdraw();

    BusMenu &menu() { return m_menu; }
    void show(const Picture &picture);

public Q_SLOTS:
    /// A click of the left button where panels show no menu on it, and one of the middle button.
    Q_SCRIPTABLE void Activate(int x, int y);
    Q_SCRIPTABLE void SecondaryActivate(int x, int y);
    Q_SCRIPTABLE void XAyatanaSecondaryActivate(uint time);
    Q_SCRIPTABLE void ContextMenu(int x, int y);
    Q_SCRIPTABLE void Scroll(int delta, const QString &orientation);
    /// What lets the next window come to the front on Wayland; it precedes what opens one.
    Q_SCRIPTABLE void ProvideXdgActivationToken(const QString &token);

Q_SIGNALS:
    Q_SCRIPTABLE void NewTitle();
    Q_SCRIPTABLE void NewIcon();
    Q_SCRIPTABLE void NewAttentionIcon();
    Q_SCRIPTABLE void NewOverlayIcon();
    Q_SCRIPTABLE void NewToolTip();
    Q_SCRIPTABLE void NewStatus(const QString &status);
    Q_SCRIPTABLE void NewIconThemePath(const QString &path);
    Q_SCRIPTABLE void NewMenu();

private:
    static QString category() { return QStringLiteral("ApplicationStatus"); }
    static QString id() { return QStringLiteral("sayvane"); }
    static QString title() { return QStringLiteral("Sayvane"); }
    static QString status() { return QStringLiteral("Active"); }
    static int windowId() { return 0; }
    static bool itemIsMenu() { return false; }
    static QDBusObjectPath menuPath() { return QDBusObjectPath(QStringLiteral("/MenuBar")); }
    static QString noName() { return {}; }
    static QList<ItemPixmap> noPixmap() { return {}; }
    static uint orderingIndex() { return 0; }
    QString iconThemePath() const { return m_needs.iconThemePath; }
    QString iconName() const { return m_picture.name; }
    QList<ItemPixmap> iconPixmap() const { return m_picture.pixmaps; }
    QString description() const { return m_picture.description; }
    ItemToolTip toolTip() const { return {.title = m_picture.description}; }

    Needs m_needs;
    BusMenu m_menu;
    Picture m_picture;
};
