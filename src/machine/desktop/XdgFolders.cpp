#include "machine/desktop/XdgFolders.h"

#include "machine/desktop/PrivateFolder.h"
#include "machine/desktop/Profile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>

#include <pwd.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(foldersLog, "com.sayvane.app.folders")

QString homeFolder(const QProcessEnvironment &environment)
{
    const QString home = environment.value(u"HOME"_s);
    if (QDir::isAbsolutePath(home))
        return home;
    const passwd *user = getpwuid(getuid());
    return user ? QFile::decodeName(user->pw_dir) : u"/"_s;
}

} // namespace

XdgFolders::XdgFolders(QString profile, QProcessEnvironment environment)
    : m_profile(std::move(profile)),
      m_environment(std::move(environment))
{
}

QString XdgFolders::base(const QString &variable, const QString &below) const
{
    const QString value = m_environment.value(variable);
    // The base directory standard: paths must be absolute, others are to be ignored.
    return QDir::cleanPath(QDir::isAbsolutePath(value) ? value : homeFolder(m_environment) + u'/' + below);
}

QString XdgFolders::configuration() const
{
    return userConfiguration() + u'/' + Profile::systemName(m_profile);
}

QString XdgFolders::userConfiguration() const
{
    return base(u"XDG_CONFIG_HOME"_s, u".config"_s);
}

QString XdgFolders::applicationSupport() const
{
    const QString data = base(u"XDG_DATA_HOME"_s, u".local/share"_s);
    return m_profile.isEmpty() ? data : data + u'/' + Profile::systemName(m_profile);
}

QString XdgFolders::temporary() const
{
    if (m_temporary.isEmpty() || !PrivateFolder::ensure(m_temporary))
        m_temporary = chooseTemporary();
    return m_temporary;
}

QString XdgFolders::chooseTemporary() const
{
    const QString name = Profile::systemName(m_profile);
    const QString named = QDir::cleanPath(m_environment.value(u"TMPDIR"_s));
    const QString root = QDir::isAbsolutePath(named) && QFileInfo(named).isDir() ? named : u"/tmp"_s;
    const QString usual = u"%1/%2-%3"_s.arg(root, name).arg(geteuid());
    if (PrivateFolder::ensure(usual))
        return usual;

    const QString fresh = PrivateFolder::createUnique(usual);
    if (!fresh.isEmpty()) {
        qCWarning(foldersLog).noquote() << usual << "is not ours alone; using" << fresh << "instead.";
        return fresh;
    }
    const QString cached = u"%1/%2/temporary"_s.arg(base(u"XDG_CACHE_HOME"_s, u".cache"_s), name);
    qCWarning(foldersLog).noquote() << "There is no shared temporary folder for us; files go to" << cached;
    if (!PrivateFolder::ensure(cached))
        qCCritical(foldersLog).noquote() << "There is no place for temporary files:" << cached;
    return cached;
}
