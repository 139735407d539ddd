#include "machine/desktop/PrivateFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

} // namespace

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
