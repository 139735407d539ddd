#include "machine/desktop/DesktopWorkspace.h"

#include <QProcess>
#include <QStandardPaths>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// The programs that show a pane on one desktop, best first.
struct DesktopPanes
{
    QString desktop; ///< as in XDG_CURRENT_DESKTOP
    QList<QStringList> microphone;
    QList<QStringList> accessibility;
};

QList<DesktopPanes> knownDesktops()
{
    const QList<QStringList> gnomeSound{{u"gnome-control-center"_s, u"sound"_s}};
    const QList<QStringList> gnomeAccess{{u"gnome-control-center"_s, u"universal-access"_s}};
    return {
        {u"GNOME"_s, gnomeSound, gnomeAccess},
        {u"Unity"_s,
         {{u"unity-control-center"_s, u"sound"_s}, gnomeSound[0]},
         {{u"unity-control-center"_s, u"universal-access"_s}, gnomeAccess[0]}},
        {u"Budgie"_s,
         {{u"budgie-control-center"_s, u"sound"_s}, gnomeSound[0]},
         {{u"budgie-control-center"_s, u"universal-access"_s}, gnomeAccess[0]}},
        {u"KDE"_s,
         {{u"systemsettings"_s, u"kcm_pulseaudio"_s}, {u"systemsettings5"_s, u"kcm_pulseaudio"_s}},
         {{u"systemsettings"_s, u"kcm_access"_s}, {u"systemsettings5"_s, u"kcm_access"_s}}},
        {u"XFCE"_s, {}, {{u"xfce4-accessibility-settings"_s}, {u"xfce4-settings-manager"_s}}},
        {u"X-Cinnamon"_s,
         {{u"cinnamon-settings"_s, u"sound"_s}},
         {{u"cinnamon-settings"_s, u"universal-access"_s}}},
        {u"MATE"_s,
         {{u"mate-volume-control"_s, u"--page=input"_s}},
         {{u"mate-at-properties"_s}, {u"mate-control-center"_s}}},
        {u"LXQt"_s, {{u"pavucontrol-qt"_s, u"--tab=4"_s}}, {{u"lxqt-config"_s}}},
    };
}

/// The mixer that any desktop may have; its fifth tab shows the recording devices.
const QStringList mixer{u"pavucontrol"_s, u"--tab=4"_s};

QList<QStringList> commandsFor(SettingsPane pane, const QStringList &desktops)
{
    const QList<DesktopPanes> known = knownDesktops();
    QList<QStringList> commands;
    for (const QString &desktop : desktops) {
        const auto it = std::ranges::find_if(known, [&](const DesktopPanes &panes) {
            return panes.desktop.compare(desktop, Qt::CaseInsensitive) == 0;
        });
        if (it != known.end())
            commands += pane == SettingsPane::microphone ? it->microphone : it->accessibility;
    }
    if (pane == SettingsPane::microphone)
        commands += mixer;
    return commands;
}

bool isSafe(const QUrl &address)
{
    if (!address.isValid())
        return false;
    const QString scheme = address.scheme();
    if (scheme == u"file")
        return address.host().isEmpty() && !address.path().isEmpty();
    return (scheme == u"https" || scheme == u"http") && !address.host().isEmpty();
}

} // namespace

DesktopWorkspace::DesktopWorkspace(QProcessEnvironment environment) : m_environment(std::move(environment))
{
}

bool DesktopWorkspace::open(const QUrl &address)
{
    if (!isSafe(address))
        return false;
    const QString text = address.toString(QUrl::FullyEncoded);
    return start({u"xdg-open"_s, text}) || start({u"gio"_s, u"open"_s, text});
}

bool DesktopWorkspace::open(SettingsPane pane)
{
    const QStringList desktops =
        m_environment.value(u"XDG_CURRENT_DESKTOP"_s).split(u':', Qt::SkipEmptyParts);
    return std::ranges::any_of(commandsFor(pane, desktops),
                               [this](const QStringList &command) { return start(command); });
}

bool DesktopWorkspace::start(const QStringList &command) const
{
    const QStringList places = m_environment.value(u"PATH"_s).split(u':', Qt::SkipEmptyParts);
    const QString program = QStandardPaths::findExecutable(command.first(), places);
    if (program.isEmpty())
        return false;
    QProcess process;
    process.setProgram(program);
    process.setArguments(command.mid(1));
    process.setProcessEnvironment(m_environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    return process.startDetached();
}
