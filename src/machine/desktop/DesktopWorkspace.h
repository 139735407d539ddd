#pragma once

#include "base/Workspace.h"

#include <QList>
#include <QProcessEnvironment>
#include <QStringList>

/// The running desktop: its preferred programs and its settings.
class DesktopWorkspace final : public Workspace
{
public:
    explicit DesktopWorkspace(QProcessEnvironment environment = QProcessEnvironment::systemEnvironment());

    /// Web addresses and local files only; anything else is refused.
    bool open(const QUrl &address) override;
    bool open(SettingsPane pane) override;

private:
    bool start(const QStringList &command) const;

    QProcessEnvironment m_environment;
};
