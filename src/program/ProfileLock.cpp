#include "program/ProfileLock.h"

#include "base/Folders.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto lookPause = 20ms;

QString lockPath(const Folders &folders)
{
    QDir().mkpath(folders.own());
    return folders.instanceLock();
}

/// Whether the open file is still the one at the path: somebody may have deleted it meanwhile, and then the
/// next to come makes another.
bool isAt(int file, const QByteArray &path)
{
    struct stat open = {};
    struct stat named = {};
    return ::fstat(file, &open) == 0 && ::stat(path.constData(), &named) == 0 &&
           open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

} // namespace

ProfileLock::ProfileLock(const Folders &folders) : m_path(lockPath(folders))
{
}

ProfileLock::~ProfileLock()
{
    if (m_file >= 0)
        ::close(m_file);
}

bool ProfileLock::tryLock(std::chrono::milliseconds limit)
{
    const QDeadlineTimer deadline(limit);
    while (!tryOnce()) {
        if (!m_isTaken || deadline.hasExpired())
            return false;
        QThread::msleep(lookPause.count());
    }
    return true;
}

bool ProfileLock::tryOnce()
{
    if (m_file >= 0)
        return true;
    const QByteArray path = QFile::encodeName(m_path);
    const int file = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0) {
        m_isTaken = false;
        return false;
    }
    const bool locked = ::flock(file, LOCK_EX | LOCK_NB) == 0;
    m_isTaken = locked ? !isAt(file, path) : errno == EWOULDBLOCK;
    if (locked && !m_isTaken)
        m_file = file;
    else
        ::close(file);
    return m_file >= 0;
}

QString ProfileLock::objection() const
{
    if (isTaken())
        return u"Another Sayvane that cannot be reached from here is at work. Try again when it has ended."_s;
    return u"The folder %1 cannot be written."_s.arg(QFileInfo(m_path).path());
}
