#pragma once

#include "screens/settings/SettingsCollaborators.h"

#include <QObject>

class SettingsView;

/// Makes the settings forms of the program's windows, each with a state of its own.
class SettingsForms final : public QObject
{
    Q_OBJECT
public:
    explicit SettingsForms(SettingsCollaborators with);

    /// A form that lives as long as its owner.
    Q_INVOKABLE SettingsView *open(QObject *owner);

private:
    SettingsCollaborators m_with;
};
