#pragma once

#include "base/Autostart.h"

/// A desktop entry among those that the desktop starts at log-in, as the XDG autostart standard places it.
class XdgAutostart final : public Autostart
{
public:
    /// `configuration` is the user's folder for configuration files; the program is started for the profile.
    XdgAutostart(const QString &configuration, const QString &profile);

    /// An entry that the desktop's own settings switched off does not count.
    bool isOn() const override;
    std::expected<void, QString> set(bool isOn) override;

private:
    QString m_path;
    QString m_profile;
};
