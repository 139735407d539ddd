#pragma once

#include "tray/MenuEntry.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QHash>
#include <QList>
#include <QMetaType>
#include <QObject>
#include <QSet>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <map>
#include <tuple>

/// What a panel says that the user did with an entry, as com.canonical.dbusmenu sends it: (isvu).
struct MenuEvent
{
    int id = 0;
    QString type; ///< such as "clicked"
    QDBusVariant data;
    uint time = 0;
};
Q_DECLARE_METATYPE(MenuEvent)

QDBusArgument &operator<<(QDBusArgument &argument, const MenuEvent &event);
const QDBusArgument &operator>>(const QDBusArgument &argument, MenuEvent &event);

/// The properties of one menu entry by its id: (ia{sv}).
struct MenuProperties
{
    int id = 0;
    QVariantMap properties;
};
Q_DECLARE_METATYPE(MenuProperties)

QDBusArgument &operator<<(QDBusArgument &argument, const MenuProperties &entry);
const QDBusArgument &operator>>(const QDBusArgument &argument, MenuProperties &entry);

/// One entry of a menu with those below it, as com.canonical.dbusmenu sends it: (ia{sv}av).
struct MenuLayout
{
    int id = 0;
    QVariantMap properties;
    QList<QDBusVariant> children; ///< each holds a `MenuLayout`
};
Q_DECLARE_METATYPE(MenuLayout)

QDBusArgument &operator<<(QDBusArgument &argument, const MenuLayout &layout);
const QDBusArgument &operator>>(const QDBusArgument &argument, MenuLayout &layout);

/// A menu that a panel draws: com.canonical.dbusmenu, version 3, as libdbusmenu defines it.
///
/// It is made when a panel asks for it. Panels keep what they know of an entry by its id and add to it, so an
/// id stands for one meaning and one kind as long as this lives, and a click does what the entry meant that
/// the panel showed, also where the menu is another by now.
class BusMenu final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(QString TextDirection READ textDirection CONSTANT)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath CONSTANT)
public:
    explicit BusMenu(std::function<QList<MenuEntry>()> entries);

    /// The entries are others now.
    void announce();

public Q_SLOTS:
    Q_SCRIPTABLE uint GetLayout(int parentId, int depth, const QStringList &names, MenuLayout &layout);
    Q_SCRIPTABLE QList<MenuProperties> GetGroupProperties(const QList<int> &ids, const QStringList &names);
    Q_SCRIPTABLE QDBusVariant GetProperty(int id, const QString &name);
    Q_SCRIPTABLE void Event(int id, const QString &type, const QDBusVariant &data, uint time);
    /// As `Event` for each; gives the ids that there is no entry of.
    Q_SCRIPTABLE QList<int> EventGroup(const QList<MenuEvent> &events);
    /// Whether the layout below this entry has to be asked for again.
    Q_SCRIPTABLE bool AboutToShow(int id);
    /// Gives the ids whose layout has to be asked for again, and those that there is no entry of.
    Q_SCRIPTABLE QList<int> AboutToShowGroup(const QList<int> &ids, QList<int> &missing);

Q_SIGNALS:
    Q_SCRIPTABLE void LayoutUpdated(uint revision, int parent);

private:
    /// An entry as panels know it.
    struct Shown
    {
        MenuEntry entry;
        QList<int> children;
    };
    /// The id of the parent, the kind, the name, and how many siblings of that kind and name stand above it.
    using Meaning = std::tuple<int, MenuEntry::Kind, QString, int>;
    using Ids = std::map<Meaning, int>;

    static uint version() { return 3; }
    static QString status() { return QStringLiteral("normal"); }
    static QString textDirection() { return QStringLiteral("ltr"); }
    static QStringList iconThemePath() { return {}; }

    void lookAfresh();
    QList<int> place(const QList<MenuEntry> &entries, int parent, const Ids &before);
    QVariantMap propertiesOf(int id) const;
    MenuLayout layoutOf(int id, int depth);

    std::function<QList<MenuEntry>()> m_entries;
    QHash<int, Shown> m_shown; // 0 is the menu itself
    Ids m_ids;
    int m_lastId = 0;
    uint m_revision = 1;
    QSet<int> m_unread;    // whose children nobody has asked for since they were made
    bool m_isStale = true; // what is shown is not what there is
};
