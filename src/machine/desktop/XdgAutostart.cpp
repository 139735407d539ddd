#include "machine/desktop/XdgAutostart.h"

#include "base/AtomicFile.h"
#include "machine/desktop/XdgFolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

/// One argument of a command, by the desktop entry standard's two layers of escapes.
QString quoted(const QString &argument)
{
    QString inner;
    for (const QChar character : argument) {
        if (u"\"`$\\"_s.contains(character))
            inner += u'\\';
        inner += character;
        if (character == u'%')
            inner += character;
    }
    return u'"' + inner.replace(u'\\', u"\\\\"_s) + u'"';
}

} // namespace

XdgAutostart::XdgAutostart(const QString &configuration, const QString &profile)
    : m_path(configuration + u"/autostart/app.sayvane.Sayvane%1.desktop"_s.arg(
                                 profile.isEmpty() ? QString() : u'-' + Profile::systemName(profile))),
      m_profile(profile)
{
}

bool XdgAutostart::isOn() const
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArrayList lines = file.readAll().split('\n');
    return !lines.contains("Hidden=true") && !lines.contains("X-GNOME-Autostart-enabled=false");
}

std::expected<void, QString> XdgAutostart::set(bool isOn)
{
    QFile file(m_path);
    if (!isOn) {
        if (file.exists() && !file.remove())
            return std::unexpected(file.errorString());
        return {};
    }
    QDir().mkpath(QFileInfo(m_path).path());
    QString command = quoted(QCoreApplication::applicationFilePath());
    if (!m_profile.isEmpty())
        command += u" --profile "_s + quoted(m_profile);
    const QString entry =
        u"[Desktop Entry]\nType=Application\nName=Sayvane\nComment=Dictation in any application\n"
        "Exec=%1\nTryExec=%2\nIcon=app.sayvane.Sayvane\nTerminal=false\n"_s.arg(
            command, QCoreApplication::applicationFilePath().replace(u'\\', u"\\\\"_s));
    return AtomicFile::replace(m_path, entry.toUtf8());
}
