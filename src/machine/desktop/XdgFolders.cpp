#include "machine/desktop/XdgFolders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QUrl>

#include <cerrno>
#include <cstdlib>
#include <limits>

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr mode_t ownerOnly = 0700;

/// Whether the folder is ours and no link, closed to others from now on. Everything is asked of the
/// opened folder, so that nobody can exchange it between question and answer.
bool close(const QByteArray &path)
{
    const int folder = open(path.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder < 0)
        return false;
    struct stat facts = {};
    const bool closed = fstat(folder, &facts) == 0 && facts.st_uid == geteuid() &&
                        ((facts.st_mode & 0777) == ownerOnly || fchmod(folder, ownerOnly) == 0);
    ::close(folder);
    return closed;
}

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

QString Profile::systemName(const QString &profile)
{
    if (profile.isEmpty())
        return u"sayvane"_s;
    return u"sayvane-"_s + QString::fromLatin1(QUrl::toPercentEncoding(profile));
}

bool PrivateFolder::ensure(const QString &path)
{
    const QString clean = QDir::cleanPath(path);
    const QByteArray name = QFile::encodeName(clean);
    if (mkdir(name.constData(), ownerOnly) == 0)
        return true;
    if (errno == EEXIST)
        return close(name);
    const QString above = QFileInfo(clean).path();
    if (errno != ENOENT || above == clean)
        return false;
    if (!QFileInfo(above).isDir() && !ensure(above))
        return false;
    return mkdir(name.constData(), ownerOnly) == 0;
}

QString PrivateFolder::createUnique(const QString &path)
{
    QByteArray name = QFile::encodeName(path) + "-XXXXXX";
    return mkdtemp(name.data()) ? QFile::decodeName(name) : QString();
}

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

std::optional<int64_t> StatVolumes::availableCapacity(const QString &folder) const
{
    if (folder.isEmpty())
        return std::nullopt;
    QString path = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    struct statvfs volume = {};
    while (statvfs(QFile::encodeName(path).constData(), &volume) != 0) {
        const QString above = QFileInfo(path).path();
        if (errno == EINTR)
            continue;
        if (errno != ENOENT || above == path)
            return std::nullopt;
        path = above;
    }
    int64_t bytes = 0;
    if (__builtin_mul_overflow(volume.f_bavail, volume.f_frsize, &bytes))
        return std::numeric_limits<int64_t>::max();
    return bytes;
}
