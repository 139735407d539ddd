#include "tray/BusMenu.h"

#include <QDBusMetaType>
#include <QKeySequence>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

// An entry's id is its place, counted from 1; one of a submenu is that of the submenu followed by three
// more digits. The menu itself is 0.
constexpr int submenuFactor = 1000;

/// The one or two names of the protocol for each part of the shortcut, such as {{"Control", "q"}}.
QList<QStringList> keysOf(const QString &shortcut)
{
    QStringList parts = shortcut.toLower().split(u'+');
    parts.replaceInStrings(u"ctrl"_s, u"Control"_s).replaceInStrings(u","_s, u"comma"_s);
    return {parts};
}

QVariantMap propertiesOfMenu()
{
    return {{u"children-display"_s, u"submenu"_s}};
}

QVariantMap propertiesOf(const MenuEntry &entry)
{
    using Kind = MenuEntry::Kind;
    if (entry.kind == Kind::separator)
        return {{u"type"_s, u"separator"_s}};
    const QString line = entry.text.simplified();
    // In a label an underscore would mark a key. Panels let a screen reader go on reading the first label of
    // an entry unless they are told otherwise.
    QVariantMap properties{{u"label"_s, QString(line).replace(u'_', u"__"_s)}, {u"accessible-desc"_s, line}};
    if (entry.kind == Kind::text || !entry.enabled)
        properties.insert(u"enabled"_s, false);
    if (entry.kind == Kind::submenu)
        properties.insert(u"children-display"_s, u"submenu"_s);
    if (!entry.shortcut.isEmpty())
        properties.insert(u"shortcut"_s, QVariant::fromValue(keysOf(entry.shortcut)));
    return properties;
}

QList<QDBusVariant> layoutOf(const QList<MenuEntry> &entries, int firstId, int depth)
{
    QList<QDBusVariant> layout;
    int id = firstId;
    for (const MenuEntry &entry : entries) {
        MenuLayout each{id, propertiesOf(entry), {}};
        if (depth != 1) // 0 stops above, below 0 there is no limit
            each.children = layoutOf(entry.submenu, id * submenuFactor + 1, depth - 1);
        layout.append(QDBusVariant(QVariant::fromValue(each)));
        ++id;
    }
    return layout;
}

} // namespace

BusMenu::BusMenu(std::function<QList<MenuEntry>()> entries) : m_entries(std::move(entries))
{
    qDBusRegisterMetaType<MenuEvent>();
    qDBusRegisterMetaType<QList<MenuEvent>>();
    qDBusRegisterMetaType<MenuLayout>();
    qDBusRegisterMetaType<MenuProperties>();
    qDBusRegisterMetaType<QList<MenuProperties>>();
    qDBusRegisterMetaType<QList<QDBusVariant>>();
    qDBusRegisterMetaType<QList<QStringList>>();
}

void BusMenu::announce()
{
    // Nobody has looked since the last announcement.
    if (std::exchange(m_isStale, true))
        return;
    Q_EMIT LayoutUpdated(++m_revision, 0);
}

MenuEntry BusMenu::shown(int id) const
{
    if (id < submenuFactor)
        return m_shown.value(id - 1);
    return m_shown.value(id / submenuFactor - 1).submenu.value(id % submenuFactor - 1);
}

bool BusMenu::exists(int id) const
{
    const qsizetype entry = id < submenuFactor ? id : id / submenuFactor;
    if (entry < 0 || entry > m_shown.size())
        return false;
    return id < submenuFactor ||
           (id % submenuFactor > 0 && id % submenuFactor <= m_shown[entry - 1].submenu.size());
}

uint BusMenu::GetLayout(int parentId, int depth, const QStringList &, MenuLayout &layout)
{
    if (std::exchange(m_isStale, false))
        m_shown = m_entries();
    layout.id = parentId;
    if (parentId == 0) {
        layout.properties = propertiesOfMenu();
        if (depth != 0)
            layout.children = layoutOf(m_shown, 1, depth);
    } else {
        const MenuEntry parent = shown(parentId);
        layout.properties = propertiesOf(parent);
        if (depth != 0)
            layout.children = layoutOf(parent.submenu, parentId * submenuFactor + 1, depth);
    }
    return m_revision;
}

QList<MenuProperties> BusMenu::GetGroupProperties(const QList<int> &ids, const QStringList &)
{
    QList<MenuProperties> found;
    for (const int id : ids) {
        if (exists(id))
            found.append({id, id == 0 ? propertiesOfMenu() : propertiesOf(shown(id))});
    }
    return found;
}

QDBusVariant BusMenu::GetProperty(int id, const QString &name)
{
    const QVariantMap properties = id == 0 ? propertiesOfMenu() : propertiesOf(shown(id));
    // What is not set has the protocol's default.
    const QVariant unset =
        name == "enabled"_L1 || name == "visible"_L1 ? QVariant(true) : QVariant(QString());
    return QDBusVariant(properties.value(name, unset));
}

void BusMenu::Event(int id, const QString &type, const QDBusVariant &, uint)
{
    const MenuEntry entry = shown(id);
    if (type != "clicked"_L1 || !entry.action || !entry.enabled)
        return;
    // The panel waits for an answer; what it asked for may take longer, or end the program.
    QMetaObject::invokeMethod(this, entry.action, Qt::QueuedConnection);
}

QList<int> BusMenu::EventGroup(const QList<MenuEvent> &events)
{
    QList<int> missing;
    for (const MenuEvent &event : events) {
        if (exists(event.id))
            Event(event.id, event.type, event.data, event.time);
        else
            missing.append(event.id);
    }
    return missing;
}

bool BusMenu::AboutToShow(int)
{
    return m_isStale;
}

QList<int> BusMenu::AboutToShowGroup(const QList<int> &ids, QList<int> &missing)
{
    QList<int> stale;
    for (const int id : ids) {
        if (!exists(id))
            missing.append(id);
        else if (AboutToShow(id))
            stale.append(id);
    }
    return stale;
}
