#pragma once

#include <QDBusContext>
#include <QDBusObjectPath>
#include <QObject>
#include <QString>

/// A panel as far as a StatusNotifierItem can tell: it watches for items and reads their menus.
class PanelStandIn final : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isThere)
    Q_PROPERTY(int ProtocolVersion READ version)
public:
    PanelStandIn();
    ~PanelStandIn() override;

    /// The bus name of the item that registered last; empty for none.
    const QString &item() const { return m_item; }
    /// The labels of the item's menu from top to bottom, "-" for a separator, "(…)" for what is disabled.
    QString menu() const;
    /// Clicks the first entry of that label.
    void click(const QString &label) const;
    /// How wide its icons are.
    QList<int> iconWidths() const;

public Q_SLOTS:
    Q_SCRIPTABLE void RegisterStatusNotifierItem(const QString &service);
    Q_SCRIPTABLE void RegisterStatusNotifierHost(const QString &) {}

Q_SIGNALS:
    Q_SCRIPTABLE void StatusNotifierHostRegistered();

private:
    bool isThere() const { return true; }
    int version() const { return 0; }
    struct Entry
    {
        int id;
        QVariantMap properties;
    };
    QList<Entry> entries() const;

    QString m_item;
};
