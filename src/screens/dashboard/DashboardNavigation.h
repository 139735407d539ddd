#pragma once

#include "screens/dashboard/DashboardSection.h"

#include <QObject>

/// Which screen the dashboard shows. Anybody may send the user to another one; it outlives the window.
class DashboardNavigation : public QObject
{
    Q_OBJECT
    /// As raw value.
    Q_PROPERTY(QString section READ sectionId WRITE setSectionId NOTIFY changed)
public:
    DashboardSection section() const { return m_section; }
    void setSection(DashboardSection section);

Q_SIGNALS:
    void changed();

private:
    QString sectionId() const { return m_section.rawValue(); }
    void setSectionId(const QString &id)
    {
        setSection(DashboardSection::fromRawValue(id).value_or(m_section));
    }

    DashboardSection m_section;
};
