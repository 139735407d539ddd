#include "screens/settings/SettingsForms.h"

#include "screens/settings/SettingsView.h"

#include <utility>

SettingsForms::SettingsForms(SettingsCollaborators with) : m_with(std::move(with))
{
}

SettingsView *SettingsForms::open(QObject *owner)
{
    return new SettingsView(m_with, owner);
}
