#include "desktop/program/PanelStandIn.h"

#include "tray/BusMenu.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QDateTime>

using namespace Qt::StringLiterals;

namespace {

const QString name = u"org.kde.StatusNotifierWatcher"_s;
const QString path = u"/StatusNotifierWatcher"_s;
const QString menuInterface = u"com.canonical.dbusmenu"_s;

QVariantList ask(const QString &service, const QString &object, const QString &interface, const QString &method,
                 const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, object, interface, method);
    message.setArguments(arguments);
    return QDBusConnection::sessionBus().call(message).arguments();
}

QVariant propertyOf(const QString &item, const QString &property)
{
    const QVariantList answer = ask(item, u"/StatusNotifierItem"_s, u"org.freedesktop.DBus.Properties"_s, u"Get"_s,
                                    {u"org.kde.StatusNotifierItem"_s, property});
    return answer.value(0).value<QDBusVariant>().variant();
}

} // namespace

PanelStandIn::PanelStandIn()
{
    qDBusRegisterMetaType<MenuEvent>();
    qDBusRegisterMetaType<QList<MenuEvent>>();
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.registerObject(path, this, QDBusConnection::ExportScriptableContents | QDBusConnection::ExportAllProperties);
    bus.registerService(name);
    Q_EMIT StatusNotifierHostRegistered();
}

PanelStandIn::~PanelStandIn()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.unregisterService(name);
    bus.unregisterObject(path);
}

void PanelStandIn::RegisterStatusNotifierItem(const QString &)
{
    m_item = message().service();
}

QList<PanelStandIn::Entry> PanelStandIn::entries() const
{
    const QString menuPath = propertyOf(m_item, u"Menu"_s).value<QDBusObjectPath>().path();
    const QVariantList answer = ask(m_item, menuPath, menuInterface, u"GetLayout"_s, {0, 1, QStringList()});
    QList<Entry> found;
    if (answer.size() < 2)
        return found;
    // (revision, (id, properties, children)), each child a variant of the same three
    const auto root = answer[1].value<QDBusArgument>();
    int id = 0;
    QVariantMap properties;
    root.beginStructure();
    root >> id >> properties;
    root.beginArray();
    while (!root.atEnd()) {
        QDBusVariant child;
        root >> child;
        const auto parts = child.variant().value<QDBusArgument>();
        parts.beginStructure();
        parts >> id >> properties;
        parts.beginArray();
        parts.endArray();
        parts.endStructure();
        found.append({id, properties});
    }
    root.endArray();
    root.endStructure();
    return found;
}

QString PanelStandIn::menu() const
{
    QStringList lines;
    for (const Entry &entry : entries()) {
        const QVariantMap &facts = entry.properties;
        if (facts.value(u"type"_s).toString() == "separator"_L1)
            lines.append(u"-"_s);
        else
            lines.append((facts.value(u"enabled"_s, true).toBool() ? u"%1"_s : u"(%1)"_s)
                             .arg(facts.value(u"label"_s).toString()));
    }
    return lines.join(u'|');
}

void PanelStandIn::click(const QString &label) const
{
    const QString menuPath = propertyOf(m_item, u"Menu"_s).value<QDBusObjectPath>().path();
    for (const Entry &entry : entries()) {
        if (entry.properties.value(u"label"_s) == label)
            // As panels with libdbusmenu do.
            ask(m_item, menuPath, menuInterface, u"EventGroup"_s,
                {QVariant::fromValue(QList<MenuEvent>{{entry.id, u"clicked"_s, QDBusVariant(0), 0U}})});
    }
}

QList<int> PanelStandIn::iconWidths() const
{
    QList<int> widths;
    const auto icons = propertyOf(m_item, u"IconPixmap"_s).value<QDBusArgument>();
    icons.beginArray();
    while (!icons.atEnd()) {
        int width = 0, height = 0;
        QByteArray pixels;
        icons.beginStructure();
        icons >> width >> height >> pixels;
        icons.endStructure();
        widths.append(width);
    }
    return widths;
}
