#pragma once

#include "dashboard/DashboardSection.h"

#include <QObject>

/// Which screen the dashboard shows. Anybody may send the user to another one; it outlives the window.
class DashboardNavigation final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int section READ sectionId WRITE setSectionId NOTIFY changed)
public:
    DashboardSection section() const { return m_section; }
    void setSection(DashboardSection section);

Q_SIGNALS:
    void changed();

private:
    int sectionId() const { return m_section.id(); }
    void setSectionId(int id) { setSection(static_cast<DashboardSection::Id>(id)); }

    DashboardSection m_section;
};
