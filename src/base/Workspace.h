#pragma once

#include <QUrl>

/// A page of the system's settings.
enum class SettingsPane { microphone, accessibility };

/// The desktop around the program.
class Workspace
{
public:
    virtual ~Workspace() = default;

    /// Opens the address in the program that the user prefers for it; false when there is none.
    virtual bool open(const QUrl &address) = 0;

    /// Opens the page of the desktop's settings; false when this desktop has none.
    virtual bool open(SettingsPane pane) = 0;
};
