#pragma once

#include "screens/labs/LabsView.h"
#include "screens/settings/SettingsView.h"

#include <QVariantMap>

#include <functional>

class Host;
struct Platform;

/// The models of the screens on which the user writes: the settings and Labs.
class FormScreens
{
public:
    /// `openSettings` shows the settings in the dashboard.
    FormScreens(Host &host, Platform &platform, std::function<void()> openSettings);

    SettingsForms &settings() { return m_settings; }

    /// The models by the property names of the window.
    QVariantMap models();

private:
    SettingsForms m_settings;
    LabsView m_labs;
};
