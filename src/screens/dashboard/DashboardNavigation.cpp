#include "screens/dashboard/DashboardNavigation.h"

void DashboardNavigation::setSection(DashboardSection section)
{
    if (section == m_section)
        return;
    m_section = section;
    Q_EMIT changed();
}
