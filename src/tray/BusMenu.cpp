#include "tray/BusMenu.h"

#include <QDBusMetaType>
#include <QKeySequence>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// The one or two names of the protocol for each part of the shortcut, such as {{"Control", "q"}}.
QList<QStringList> keysOf(const QString &shortcut)
{
    QStringList parts = shortcut.toLower().split(u'+');
    parts.replaceInStrings(u"ctrl"_s, u"Control"_s).replaceInStrings(u","_s, u"comma"_s);
    return {parts};
}

// Panels never reset what they are not told again: the defaults of the protocol are told, too.
QVariantMap propertiesOfEntry(const MenuEntry &entry)
{
    using Kind = MenuEntry::Kind;
    QVariantMap properties{{u"type"_s, u"standard"_s},
                           {u"visible"_s, true},
                           {u"enabled"_s, entry.kind != Kind::text && entry.enabled}};
    if (entry.kind == Kind::separator) {
        properties.insert(u"type"_s, u"separator"_s);
        return properties;
    }
    const QString line = entry.text.simplified();
    // In a label an underscore would mark a key. Panels let a screen reader go on reading the first label of
    // an entry unless they are told otherwise.
    properties.insert(u"label"_s, QString(line).replace(u'_', u"__"_s));
    properties.insert(u"accessible-desc"_s, line);
    if (entry.kind == Kind::submenu)
        properties.insert(u"children-display"_s, u"submenu"_s);
    if (!entry.shortcut.isEmpty())
        properties.insert(u"shortcut"_s, QVariant::fromValue(keysOf(entry.shortcut)));
    return properties;
}

} // namespace

QDBusArgument &operator<<(QDBusArgument &argument, const MenuEvent &event)
{
    argument.beginStructure();
    argument << event.id << event.type << event.data << event.time;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, MenuEvent &event)
{
    argument.beginStructure();
    argument >> event.id >> event.type >> event.data >> event.time;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const MenuProperties &entry)
{
    argument.beginStructure();
    argument << entry.id << entry.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, MenuProperties &entry)
{
    argument.beginStructure();
    argument >> entry.id >> entry.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const MenuLayout &layout)
{
    argument.beginStructure();
    argument << layout.id << layout.properties << layout.children;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, MenuLayout &layout)
{
    argument.beginStructure();
    argument >> layout.id >> layout.properties >> layout.children;
    argument.endStructure();
    return argument;
}

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

void BusMenu::lookAfresh()
{
    m_isStale = false;
    m_shown.clear();
    m_unread.clear();
    const Ids before = std::exchange(m_ids, {});
    const QList<int> top = place(m_entries(), 0, before);
    m_shown.insert(0, {{.kind = MenuEntry::Kind::submenu}, top});
    m_unread.insert(0);
}

// An id that is not in use any more never comes back.
QList<int> BusMenu::place(const QList<MenuEntry> &entries, int parent, const Ids &before)
{
    QList<int> children;
    for (const MenuEntry &entry : entries) {
        Meaning meaning{parent, entry.kind, entry.name, 0};
        while (m_ids.contains(meaning))
            ++std::get<3>(meaning);
        const auto known = before.find(meaning);
        const int id = known == before.end() ? ++m_lastId : known->second;
        m_ids.emplace(meaning, id);
        m_shown.insert(id, {entry, place(entry.submenu, id, before)});
        if (entry.kind == MenuEntry::Kind::submenu)
            m_unread.insert(id);
        children.append(id);
    }
    return children;
}

QVariantMap BusMenu::propertiesOf(int id) const
{
    if (id == 0)
        return {{u"children-display"_s, u"submenu"_s}};
    const auto found = m_shown.find(id);
    return found == m_shown.end() ? QVariantMap() : propertiesOfEntry(found->entry);
}

MenuLayout BusMenu::layoutOf(int id, int depth)
{
    MenuLayout layout{id, propertiesOf(id), {}};
    if (depth == 0) // below it there is no limit
        return layout;
    m_unread.remove(id);
    const QList<int> children = m_shown.value(id).children;
    for (const int child : children)
        layout.children.append(QDBusVariant(QVariant::fromValue(layoutOf(child, depth - 1))));
    return layout;
}

// Some panels name but a few properties and nevertheless take only what the layout tells for news: they get
// all.
uint BusMenu::GetLayout(int parentId, int depth, const QStringList &, MenuLayout &layout)
{
    if (m_isStale)
        lookAfresh();
    layout = layoutOf(parentId, depth);
    // Plasma reads one level at a time. A submenu that it did not know when it opens it the first time has no
    // size yet, and comes up beyond the edge of the screen.
    const QList<int> children = m_shown.value(parentId).children;
    for (const int child : children) {
        if (m_unread.contains(child))
            QMetaObject::invokeMethod(
                this, [this, child] { Q_EMIT LayoutUpdated(m_revision, child); }, Qt::QueuedConnection);
    }
    return m_revision;
}

QList<MenuProperties> BusMenu::GetGroupProperties(const QList<int> &ids, const QStringList &)
{
    QList<MenuProperties> found;
    for (const int id : ids) {
        if (m_shown.contains(id))
            found.append({id, propertiesOf(id)});
    }
    return found;
}

QDBusVariant BusMenu::GetProperty(int id, const QString &name)
{
    return QDBusVariant(propertiesOf(id).value(name, QString()));
}

void BusMenu::Event(int id, const QString &type, const QDBusVariant &, uint)
{
    const MenuEntry entry = m_shown.value(id).entry;
    if (type != "clicked"_L1 || !entry.action || !entry.enabled)
        return;
    // The panel waits for an answer; what it asked for may take longer, or end the program.
    QMetaObject::invokeMethod(this, entry.action, Qt::QueuedConnection);
}

QList<int> BusMenu::EventGroup(const QList<MenuEvent> &events)
{
    QList<int> missing;
    for (const MenuEvent &event : events) {
        if (m_shown.contains(event.id))
            Event(event.id, event.type, event.data, event.time);
        else
            missing.append(event.id);
    }
    return missing;
}

bool BusMenu::AboutToShow(int id)
{
    return m_isStale || m_unread.contains(id);
}

QList<int> BusMenu::AboutToShowGroup(const QList<int> &ids, QList<int> &missing)
{
    QList<int> stale;
    for (const int id : ids) {
        if (!m_shown.contains(id))
            missing.append(id);
        else if (AboutToShow(id))
            stale.append(id);
    }
    return stale;
}
