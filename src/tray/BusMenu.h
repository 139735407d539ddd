#pragma once

#include "app/MenuEntry.h"
#include "tray/MenuEvent.h"
#include "tray/MenuLayout.h"
#include "tray/MenuProperties.h"

#include <QDBusVariant>
#include <QList>
#include <QObject>

#include <functional>

/// A menu that a panel draws: com.canonical.dbusmenu, version 3, as libdbusmenu defines it.
///
/// It is made when a panel asks for it. A click counts for the entry that the panel was shown, also when
/// the menu is another by now.
class BusMenu final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(QString TextDirection READ textDirection CONSTANT)
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
    Q_SCRIPTABLE bool AboutToShow(int id);
    /// Gives the ids whose layout has to be asked for again, and those that there is no entry of.
    Q_SCRIPTABLE QList<int> AboutToShowGroup(const QList<int> &ids, QList<int> &missing);

Q_SIGNALS:
    Q_SCRIPTABLE void LayoutUpdated(uint revision, int parent);

private:
    static uint version() { return 3; }
    static QString status() { return QStringLiteral("normal"); }
    static QString textDirection() { return QStringLiteral("ltr"); }

    MenuEntry shown(int id) const;
    bool exists(int id) const;

    std::function<QList<MenuEntry>()> m_entries;
    QList<MenuEntry> m_shown;
    uint m_revision = 1;
    bool m_isStale = true; // what is shown is not what there is
};
