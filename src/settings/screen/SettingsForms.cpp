#include "settings/screen/SettingsForms.h"

#include "settings/screen/SettingsView.h"

#include <utility>

SettingsForms::SettingsForms(SettingsCollaborators with) : m_with(std::move(with))
{
}

SettingsView *SettingsForms::open(QObject *owner)
{
    return new SettingsView(m_with, owner);
}
